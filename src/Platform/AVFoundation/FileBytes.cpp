#include "Platform/AVFoundation/FileBytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "Platform/Device/Device.h"

namespace quaverly::tags {
namespace {

/// Up to more than the tag of almost any song. Other pieces get memory of their own and give it back.
constexpr size_t shortestKept = size_t{16} << 10;
constexpr size_t longestKept = size_t{2} << 20;

}  // namespace

std::shared_ptr<uint8_t[]> reusedStorage(size_t length) {
  if (length < shortestKept || length > longestKept) return std::make_shared_for_overwrite<uint8_t[]>(length);
  thread_local std::shared_ptr<uint8_t[]> kept;
  thread_local size_t capacity = 0;
  if (capacity < length || kept.use_count() != 1) {
    kept = std::make_shared_for_overwrite<uint8_t[]>(length);
    capacity = length;
  }
  return kept;
}

Descriptor::Descriptor(Descriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}

Descriptor::~Descriptor() {
  if (_number >= 0) close(_number);
}

std::optional<Descriptor> openRegularFile(std::string_view devicePath) {
  const auto location = Device::current().mounts.resolve(devicePath);
  if (!location) return std::nullopt;
  Descriptor descriptor(open(location->hostPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (descriptor.number() < 0 || !lengthOfFile(descriptor.number())) return std::nullopt;
  return descriptor;
}

std::optional<uint64_t> lengthOfFile(int descriptor) {
  struct stat status;
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<uint64_t>(status.st_size);
}

size_t readAt(int descriptor, uint64_t offset, std::span<uint8_t> into) {
  size_t done = 0;
  while (done < into.size()) {
    const auto rest = into.subspan(done);
    const ssize_t count = pread(descriptor, rest.data(), rest.size(), static_cast<off_t>(offset + done));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    done += static_cast<size_t>(count);
  }
  return done;
}

FileBytes FileBytes::read(int descriptor, uint64_t offset, size_t length) {
  FileBytes piece;
  piece._storage = reusedStorage(length);
  piece._length = readAt(descriptor, offset, {piece._storage.get(), length});
  return piece;
}

NSData FileBytes::share(Bytes bytes) const {
  return NSData(_storage, std::as_bytes(bytes));
}

}  // namespace quaverly::tags
