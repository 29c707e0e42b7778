#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSLog.h"

namespace quaverly {
namespace {

/// A file beside the one it is to replace; gone again unless it took its place.
class Replacement {
 public:
  explicit Replacement(const std::string& target) : _target(target) {
    const auto prefix =
        target.substr(0, target.rfind('/') + 1) + ".replacement-" + std::to_string(::getpid());
    do {
      _path = prefix + '-' + std::to_string(++count);
      _descriptor = ::open(_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (_descriptor < 0 && errno == EEXIST);
  }
  ~Replacement() {
    if (_descriptor < 0) return;
    ::close(_descriptor);
    if (!_renamed) ::unlink(_path.c_str());
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  bool isOpen() const { return _descriptor >= 0; }

  bool write(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
      const ssize_t count = ::write(_descriptor, bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      bytes = bytes.subspan(static_cast<size_t>(count));
    }
    return true;
  }

  /// Waits until the bytes are on the disk, so that no power cut leaves an empty file in place of the old
  /// one.
  bool flush() { return ::fsync(_descriptor) == 0; }

  bool takeThePlace() {
    struct stat replaced;
    if (::stat(_target.c_str(), &replaced) == 0) ::fchmod(_descriptor, replaced.st_mode & 07777);
    _renamed = ::rename(_path.c_str(), _target.c_str()) == 0;
    return _renamed;
  }

 private:
  static inline std::atomic<unsigned> count = 0;

  std::string _target;
  std::string _path;
  int _descriptor;
  bool _renamed = false;
};

/// Nobody misses these after a power cut, and songs are imported faster without waiting for the disk.
bool isTemporary(std::string_view devicePath) {
  return devicePath.find("/tmp/") != std::string_view::npos;
}

/// Returns 0 or an `errno` value.
int write(std::span<const std::byte> bytes, std::string_view devicePath) {
  const auto location = Device::current().mounts.resolve(devicePath);
  if (!location) return ENOENT;
  if (location->access != MountTable::Access::readWrite) return EROFS;
  Replacement replacement(location->hostPath);
  const bool isWritten = replacement.isOpen() && replacement.write(bytes) &&
                         (isTemporary(devicePath) || replacement.flush()) && replacement.takeThePlace();
  return isWritten ? 0 : errno;
}

}  // namespace

bool NSData::writeToFileAtomically(std::string_view devicePath) const {
  const auto contents = bytes();
  const int error = contents.size() == _length ? write(contents, devicePath) : EIO;
  if (error != 0) NSLog("Cannot write \"" + std::string(devicePath) + "\": " + std::strerror(error));
  return error == 0;
}

}  // namespace quaverly
