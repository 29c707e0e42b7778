#pragma once

#include "Platform/Foundation/NSData.h"

namespace quaverly {

/// The descriptor of an open regular file; closes it. Any thread.
class NSData::File {
 public:
  /// Takes the descriptor over.
  explicit File(int descriptor) : _descriptor(descriptor) {}
  ~File();
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  int descriptor() const { return _descriptor; }

  /// Reads at `offset`, as much as `buffer` holds or the file has; nothing when the file cannot be read.
  std::optional<size_t> read(uint64_t offset, std::span<std::byte> buffer) const;

 private:
  int _descriptor;
};

}  // namespace quaverly
