#include "Platform/AVFoundation/ID3v2Reading.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Platform/AVFoundation/ID3Genre.h"
#include "Platform/AVFoundation/ID3Text.h"

namespace quaverly::tags {
namespace {

/// Far more than any song has; a tag made of nothing but tiny frames must not cost more memory than it is
/// long.
constexpr size_t mostFrames = 500;

constexpr std::array<std::pair<std::string_view, TagContents::Field>, 13> textFrames{{
    {"TIT2", &TagContents::title},
    {"TT2", &TagContents::title},
    {"TPE1", &TagContents::artist},
    {"TP1", &TagContents::artist},
    {"TALB", &TagContents::album},
    {"TAL", &TagContents::album},
    {"TCON", &TagContents::genre},
    {"TCO", &TagContents::genre},
    {"TRCK", &TagContents::track},
    {"TRK", &TagContents::track},
    {"TDRC", &TagContents::year},
    {"TYER", &TagContents::year},
    {"TYE", &TagContents::year},
}};

void readText(TagContents::Field field, const ID3v2Frame& frame, LazyBytes& tag, ID3v2Decoder& decoder,
              TagContents& contents) {
  if (frame.body.size() > longestText && saysItWhereItLies(frame)) return;
  tag.load(frame.body);
  const auto content = decoder.content(frame);
  if (!content) return;
  std::string text = textOfFrame(content->bytes);
  if (field == &TagContents::genre) text = genreOf(text).value_or("");
  contents.set(field, std::move(text));
}

/// The length of what stands before the picture's kind: the name of its format.
std::optional<size_t> lengthOfFormat(const ID3v2Frame& frame, Bytes afterEncoding) {
  if (frame.id.size() == 3) return 3;
  const size_t length = terminatedLength(ID3Encoding::latin1, afterEncoding);
  const bool terminated = length > 0 && afterEncoding[length - 1] == 0;
  return terminated ? std::optional(length) : std::nullopt;
}

/// The time of the release stands in for that of the recording, which players show.
TagContents::Field fieldFilledBy(const ID3v2Frame& frame, const TagContents& contents) {
  const bool standsIn = frame.id == "TDRL" && !contents.year;
  return standsIn ? &TagContents::year : fieldOfFrame(frame.id);
}

/// Longer than what stands before the image in almost any picture frame.
constexpr size_t usualPictureHead = 512;

/// The picture of a frame whose body is its content, by a look at its head alone. Nothing when that is longer
/// than usual.
std::optional<Picture> pictureByItsHead(const ID3v2Frame& frame, LazyBytes& tag) {
  const Bytes head = part(frame.body, 0, usualPictureHead);
  tag.load(head);
  const auto framed = pictureOfFrame(frame, head);
  if (!framed) return std::nullopt;
  const auto begin = static_cast<size_t>(framed->image.data() - frame.body.data());
  return Picture{framed->kind, tag.data(frame.body.subspan(begin))};
}

std::optional<Picture> pictureByItsContent(const ID3v2Frame& frame, LazyBytes& tag, ID3v2Decoder& decoder) {
  tag.load(frame.body);
  const auto content = decoder.content(frame);
  const auto framed = content ? pictureOfFrame(frame, content->bytes) : std::nullopt;
  if (!framed) return std::nullopt;
  if (!content->owner) return Picture{framed->kind, tag.data(framed->image)};
  return Picture{framed->kind, NSData(content->owner, std::as_bytes(framed->image))};
}

void readPicture(const ID3v2Frame& frame, LazyBytes& tag, ID3v2Decoder& decoder, TagContents& contents) {
  auto picture = saysItWhereItLies(frame) ? pictureByItsHead(frame, tag) : std::nullopt;
  if (!picture) picture = pictureByItsContent(frame, tag, decoder);
  if (picture) contents.pictures.push_back(std::move(*picture));
}

}  // namespace

TagContents::Field fieldOfFrame(std::string_view id) {
  const auto* found =
      std::ranges::find(textFrames, id, &std::pair<std::string_view, TagContents::Field>::first);
  return found == textFrames.end() ? nullptr : found->second;
}

bool isPictureFrame(std::string_view id) {
  return id == "APIC" || id == "PIC";
}

std::optional<FramedPicture> pictureOfFrame(const ID3v2Frame& frame, Bytes content) {
  if (content.empty() || content[0] > static_cast<uint8_t>(ID3Encoding::utf8)) return std::nullopt;
  const auto encoding = static_cast<ID3Encoding>(content[0]);
  content = content.subspan(1);
  const auto format = lengthOfFormat(frame, content);
  if (!format || content.size() <= *format || asText(content).starts_with("-->")) return std::nullopt;
  FramedPicture picture{.kind = content[*format]};
  content = content.subspan(*format + 1);
  picture.image = content.subspan(terminatedLength(encoding, content));
  return picture.image.empty() ? std::nullopt : std::optional(picture);
}

void readID3v2(const ID3v2Header& header, LazyBytes& tag, TagContents& contents) {
  ID3v2Frames frames(header, tag);
  ID3v2Decoder decoder;
  size_t taken = 0;
  while (const auto frame = frames.next()) {
    const auto field = fieldFilledBy(*frame, contents);
    if (!field && !isPictureFrame(frame->id)) continue;
    if (++taken > mostFrames) break;
    if (field) {
      readText(field, *frame, tag, decoder, contents);
    } else {
      readPicture(*frame, tag, decoder, contents);
    }
  }
}

}  // namespace quaverly::tags
