#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace quaverly::library {

/// An open file, closed when this object goes. Empty (false) when opening failed; `errno` then says why.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : _descriptor(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : _descriptor(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(_descriptor, other._descriptor);
    return *this;
  }
  ~FileDescriptor();

  /// Close-on-exec, and without waiting for the other end of a pipe.
  static FileDescriptor openForReading(const std::string& path);
  static FileDescriptor openFolder(const std::string& path);

  explicit operator bool() const { return _descriptor >= 0; }
  int get() const { return _descriptor; }
  int release() { return std::exchange(_descriptor, -1); }

  /// Writes all bytes where the file stands. Returns 0 or an `errno` value.
  int writeAll(std::span<const std::byte> bytes) const;
  /// The file's length; 0 when that cannot be told.
  uint64_t length() const;
  bool isRegularFile() const;

 private:
  int _descriptor = -1;
};

}  // namespace quaverly::library
