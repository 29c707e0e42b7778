#pragma once

#include <span>
#include <string_view>

#include "Platform/AVFoundation/ID3v2Content.h"
#include "Platform/AVFoundation/ID3v2Header.h"
#include "Platform/AVFoundation/LazyBytes.h"
#include "Platform/AVFoundation/TagContents.h"

namespace quaverly::tags {

/// The field that a text frame is for, by its id in any version; null for every other frame.
TagContents::Field fieldOfFrame(std::string_view id);

bool isPictureFrame(std::string_view id);

/// The picture of a picture frame's content: its kind, and its bytes within `content`. Nothing for a damaged
/// frame, an empty picture and a mere link to one.
struct FramedPicture {
  uint8_t kind = 0;
  Bytes image{};
};
std::optional<FramedPicture> pictureOfFrame(const ID3v2Frame& frame, Bytes content);

/// Reads a tag into `contents`, later frames over earlier ones. Pictures stay in the file until somebody
/// wants to see them.
void readID3v2(const ID3v2Header& header, LazyBytes& tag, TagContents& contents);

}  // namespace quaverly::tags
