#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "Platform/AVFoundation/Bytes.h"
#include "Platform/Foundation/NSData.h"

namespace quaverly::tags {

/// A descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number) : _number(number) {}
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor();

  int number() const { return _number; }

 private:
  int _number;
};

/// Opens a regular file for reading, by its device path. Never waits, whatever lies there.
std::optional<Descriptor> openRegularFile(std::string_view devicePath);

/// The length of a descriptor's file; nothing when it is not a regular file.
std::optional<uint64_t> lengthOfFile(int descriptor);

/// Fills `into` from `offset` on and returns how many bytes there were: fewer at the end of the file or after
/// a read error. Leaves the descriptor's own position alone.
size_t readAt(int descriptor, uint64_t offset, std::span<uint8_t> into);

/// Memory for a piece of a file, not initialised. Of the usual lengths of tags it is the same for each piece
/// that this thread reads, once nobody uses it for the piece before any more.
std::shared_ptr<uint8_t[]> reusedStorage(size_t length);

/// A piece of a file in memory. What is made of it (pictures) shares the memory with it instead of copying.
class FileBytes {
 public:
  FileBytes() = default;

  /// At most `length` bytes from `offset` on; the caller has held `length` against the file's.
  static FileBytes read(int descriptor, uint64_t offset, size_t length);

  Bytes bytes() const { return {_storage.get(), _length}; }

  /// `bytes`, which lie in this piece, as data that keeps the piece's memory alive.
  NSData share(Bytes bytes) const;

 private:
  std::shared_ptr<uint8_t[]> _storage;
  size_t _length = 0;
};

}  // namespace quaverly::tags
