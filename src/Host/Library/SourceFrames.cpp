#include "Host/Library/SourceFrames.h"

#include <set>
#include <utility>

#include "Host/Library/ArtworkMatch.h"
#include "Platform/AVFoundation/ID3Text.h"
#include "Platform/AVFoundation/ID3v2Reading.h"

namespace quaverly::library {
namespace {

using tags::ID3v2Frame;
using tags::Picture;

/// A tag made of nothing but tiny frames must not cost more memory than a song does.
constexpr size_t mostFrames = 100'000;

}  // namespace

SourceFrames::SourceFrames(tags::TagsAround& around) {
  bool isFirst = true;
  for (auto* list : {&around.leading, &around.trailing}) {
    for (auto& tag : *list) {
      if (!tag.header.readable()) continue;
      if (std::exchange(isFirst, false)) _version = tag.header.version;
      if (tag.header.version == _version) add(tag);
    }
  }
}

void SourceFrames::add(tags::TagsAround::ID3v2& tag) {
  std::set<std::string_view> known;
  for (const auto& frame : _frames) known.insert(frame.id);
  tag.bytes.load(tag.bytes.bytes());
  tags::ID3v2Frames frames(tag.header, tag.bytes);
  while (const auto frame = frames.next()) {
    _isWhole = _frames.size() < mostFrames;
    if (!_isWhole) return;
    if (!known.contains(frame->id)) _frames.push_back(*frame);
  }
}

std::string SourceFrames::textOf(const ID3v2Frame& frame) {
  const auto content = _decoder.content(frame);
  return content ? tags::textOfFrame(content->bytes) : std::string();
}

bool SourceFrames::readTo(std::string_view wanted, Field field) {
  bool isThere = wanted.empty();
  for (const auto& frame : _frames) {
    if (tags::fieldOfFrame(frame.id) != field) continue;
    if (!readsTo(wanted, field, textOf(frame))) return false;
    isThere = true;
  }
  return isThere;
}

std::optional<uint8_t> SourceFrames::pictureKind(const ID3v2Frame& frame) {
  const auto content = _decoder.content(frame);
  const auto picture = content ? tags::pictureOfFrame(frame, content->bytes) : std::nullopt;
  return picture ? std::optional(picture->kind) : std::nullopt;
}

bool SourceFrames::shows(const NSData& picture) {
  std::optional<tags::ID3v2Content> shown;
  bool isFront = false;
  for (const auto& frame : _frames) {
    const auto content = tags::isPictureFrame(frame.id) ? _decoder.content(frame) : std::nullopt;
    const auto framed = content ? tags::pictureOfFrame(frame, content->bytes) : std::nullopt;
    if (!framed || (isFront && framed->kind != Picture::frontCover)) continue;
    shown = tags::ID3v2Content{framed->image, content->owner};
    isFront = framed->kind == Picture::frontCover;
  }
  return shown && isSamePicture(picture, shown->bytes);
}

}  // namespace quaverly::library
