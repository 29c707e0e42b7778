#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "Platform/AVFoundation/APETag.h"
#include "Platform/AVFoundation/AudioContent.h"
#include "Platform/AVFoundation/FileBytes.h"
#include "Platform/AVFoundation/ID3v2Header.h"
#include "Platform/AVFoundation/LazyBytes.h"

namespace quaverly::tags {

/// The tags that stand in front of and behind the audio of a file: ID3v2 in front, and behind it ID3v1, APE,
/// lyrics and, seldom, another ID3v2. Only what tells where they lie is read, and tags of the other kinds.
struct TagsAround {
  struct ID3v2 {
    ID3v2Header header;
    LazyBytes bytes;  ///< the whole tag, cut where the file ends
  };
  struct Behind {
    std::optional<APEFooter> ape;  ///< absent when these are lyrics
    FileBytes bytes;               ///< the whole tag
  };

  /// In file order. The first is the one that players read.
  std::vector<ID3v2> leading;
  std::vector<ID3v2> trailing;
  /// APE tags and lyrics behind the audio, the last one first.
  std::vector<Behind> behind;
  FileBytes id3v1;  ///< empty when there is none

  uint64_t fileLength = 0;
  uint64_t audioOffset = 0;  ///< behind the leading tags
  uint64_t audioEnd = 0;     ///< where the first of the tags behind it begins
  Container container = Container::other;

  /// `length` is the file's. The descriptor must stay open as long as ID3v2 tags are looked at.
  static TagsAround read(int descriptor, uint64_t length);
};

}  // namespace quaverly::tags
