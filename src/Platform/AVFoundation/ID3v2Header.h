#pragma once

#include <cstdint>
#include <optional>

#include "Platform/AVFoundation/Bytes.h"

namespace quaverly::tags {

/// The ten bytes that an ID3v2 tag begins with.
struct ID3v2Header {
  static constexpr size_t length = 10;

  uint8_t version = 0;  ///< 2, 3 or 4 for ID3v2.2 to 2.4; others are newer than this reader
  bool unsynchronised = false;
  bool extended = false;    ///< an extended header follows
  bool compressed = false;  ///< a flag of 2.2 for which no method was ever defined
  bool footer = false;
  uint32_t bodyLength = 0;  ///< without header and footer, as declared

  /// Header, body and footer.
  uint64_t tagLength() const { return length + uint64_t{bodyLength} + (footer ? length : 0); }
  /// Whether its frames can be read.
  bool readable() const { return version >= 2 && version <= 4 && !compressed; }

  /// Nothing when `bytes` do not begin with a header.
  static std::optional<ID3v2Header> parse(Bytes bytes);
  /// The same for the footer that ends a tag behind the audio.
  static std::optional<ID3v2Header> parseFooter(Bytes bytes);
};

/// Four bytes of seven bits each, as tags write sizes; nothing when one has its highest bit set.
std::optional<uint32_t> syncsafe(Bytes bytes);

}  // namespace quaverly::tags
