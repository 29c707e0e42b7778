#include "Host/Library/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace quaverly::library {

FileDescriptor::~FileDescriptor() {
  if (_descriptor >= 0) close(_descriptor);
}

FileDescriptor FileDescriptor::openForReading(const std::string& path) {
  return FileDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
}

FileDescriptor FileDescriptor::openFolder(const std::string& path) {
  return FileDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY));
}

int FileDescriptor::writeAll(std::span<const std::byte> bytes) const {
  while (!bytes.empty()) {
    const ssize_t written = write(_descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    bytes = bytes.subspan(static_cast<size_t>(written));
  }
  return 0;
}

uint64_t FileDescriptor::length() const {
  struct stat attributes {};
  return fstat(_descriptor, &attributes) == 0 ? static_cast<uint64_t>(attributes.st_size) : 0;
}

bool FileDescriptor::isRegularFile() const {
  struct stat attributes {};
  return fstat(_descriptor, &attributes) == 0 && S_ISREG(attributes.st_mode);
}

}  // namespace quaverly::library
