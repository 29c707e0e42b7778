#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "Platform/AVFoundation/Bytes.h"
#include "Platform/Foundation/NSData.h"

namespace quaverly::tags {

/// A piece of a file that comes into memory as far as somebody looks at it: most of a tag is a picture that
/// nobody may ever want to see. The descriptor must outlive this object.
class LazyBytes {
 public:
  /// `length` bytes from `offset` on; the caller has held them against the file's length.
  LazyBytes(int descriptor, uint64_t offset, size_t length);

  /// The whole piece. What of it was not loaded yet is undefined.
  Bytes bytes() const { return {_storage.get(), _length}; }

  /// Reads what is not in memory yet of a part, which lies within the piece. Bytes that the file lacks
  /// meanwhile are zeros.
  void load(Bytes part);

  /// The whole piece, loaded, to be changed in memory. From now on it no longer is what the file has.
  std::span<uint8_t> edit();

  /// A part as data. It stays in the file, which is held open for it, until somebody wants the bytes; in a
  /// piece that was edited, and when there is no descriptor left, it shares the piece's memory instead.
  NSData data(Bytes part);

 private:
  /// As much as is read at a time.
  static constexpr size_t pageLength = 4096;
  void loadPages(size_t first, size_t end);
  std::optional<NSData> dataInFile(Bytes part);

  int _descriptor;
  uint64_t _offset;
  std::shared_ptr<uint8_t[]> _storage;
  size_t _length;
  std::vector<bool> _isLoaded;  // by page
  bool _isEdited = false;
  std::optional<NSData> _file;  // opened once for all data that stays there
};

}  // namespace quaverly::tags
