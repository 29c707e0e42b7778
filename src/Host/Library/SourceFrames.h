#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Host/Library/TagValues.h"
#include "Platform/AVFoundation/ID3v2Content.h"
#include "Platform/AVFoundation/ID3v2Frames.h"
#include "Platform/AVFoundation/TagsAround.h"

namespace quaverly::library {

/// The ID3v2 frames of a song as they were found.
///
/// The first readable tag of the file is the song's, and its version is theirs. Further tags of the same
/// version add the frames that it has no like of; tags of other versions add nothing.
class SourceFrames {
 public:
  /// `around` must outlive this object, which may undo stuffing in its bytes.
  explicit SourceFrames(tags::TagsAround& around);

  /// 3 for a file without a tag.
  uint8_t version() const { return _version; }
  /// In file order.
  const std::vector<tags::ID3v2Frame>& frames() const { return _frames; }
  /// False when there were more frames than any song has; the rest is missing then.
  bool isWhole() const { return _isWhole; }

  /// Whether what there is for a field reads to the value that is wanted ("" for none).
  bool readTo(std::string_view wanted, Field field);

  /// The kind of a picture frame; nothing when it cannot be read.
  std::optional<uint8_t> pictureKind(const tags::ID3v2Frame& frame);

  /// Whether the picture that a reader shows for the song is the given one.
  bool shows(const NSData& picture);

 private:
  void add(tags::TagsAround::ID3v2& tag);
  std::string textOf(const tags::ID3v2Frame& frame);

  uint8_t _version = 3;
  bool _isWhole = true;
  std::vector<tags::ID3v2Frame> _frames;
  tags::ID3v2Decoder _decoder;
};

}  // namespace quaverly::library
