#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include "Platform/AVFoundation/Bytes.h"
#include "Platform/AVFoundation/ID3v2Frames.h"

namespace quaverly::tags {

/// What a frame says, with compression and stuffing undone. Most frames say it where they lie; for the others
/// `owner` keeps the bytes.
struct ID3v2Content {
  Bytes bytes;
  std::shared_ptr<const void> owner;
};

/// Whether a frame's body is its content.
bool saysItWhereItLies(const ID3v2Frame& frame);

/// Undoes what was done to frames, within a budget for all the frames of a file, so that a small file cannot
/// ask for much memory.
class ID3v2Decoder {
 public:
  static constexpr size_t budget = size_t{32} << 20;

  /// The body must be in memory. Nothing for an encrypted frame, a damaged one, and one that no longer fits
  /// into the budget.
  std::optional<ID3v2Content> content(const ID3v2Frame& frame);

 private:
  std::optional<ID3v2Content> resynchronised(const ID3v2Content& content);
  std::optional<ID3v2Content> inflated(const ID3v2Content& content);
  bool spend(size_t length);

  size_t _left = budget;
};

}  // namespace quaverly::tags
