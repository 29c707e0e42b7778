#pragma once

#include "Platform/AVFoundation/Bytes.h"
#include "Platform/AVFoundation/TagContents.h"

namespace quaverly::tags {

/// The fixed fields of ID3v1, in the last 128 bytes of a file. The last byte of the comment is the track
/// number when the one before it is zero.
struct ID3v1 {
  static constexpr size_t length = 128;
  struct Range {
    size_t offset;
    size_t length;
  };
  static constexpr Range title{3, 30};
  static constexpr Range artist{33, 30};
  static constexpr Range album{63, 30};
  static constexpr Range year{93, 4};
  static constexpr Range track{125, 2};
  static constexpr Range genre{127, 1};

  /// `bytes` are such a tag.
  static bool isTag(Bytes bytes) { return bytes.size() == length && asText(bytes).starts_with("TAG"); }
  static void read(Bytes tag, TagContents& contents);
};

}  // namespace quaverly::tags
