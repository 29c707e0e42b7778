#pragma once

#include <chrono>
#include <cstdint>

namespace quaverly {

/// What the file system keeps about an item.
class NSFileAttributes {
 public:
  NSFileAttributes(std::chrono::sys_seconds modificationDate, uint64_t size)
      : _modificationDate(modificationDate), _size(size) {}

  /// The full second; the rest is cut off.
  std::chrono::sys_seconds fileModificationDate() const { return _modificationDate; }
  /// In bytes.
  uint64_t fileSize() const { return _size; }

 private:
  std::chrono::sys_seconds _modificationDate;
  uint64_t _size;
};

}  // namespace quaverly
