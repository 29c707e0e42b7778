#include "Host/Library/ID3v2Writing.h"

#include <algorithm>
#include <array>

#include "Host/Library/ImageFormat.h"
#include "Platform/AVFoundation/ID3Text.h"

namespace quaverly::library {
namespace {

using tags::TagContents;

struct FieldNames {
  Field field;
  std::array<std::string_view, 3> ids;  ///< in 2.2, 2.3 and 2.4
};

constexpr std::array fieldNames{
    FieldNames{&TagContents::title, {"TT2", "TIT2", "TIT2"}},
    FieldNames{&TagContents::artist, {"TP1", "TPE1", "TPE1"}},
    FieldNames{&TagContents::album, {"TAL", "TALB", "TALB"}},
    FieldNames{&TagContents::track, {"TRK", "TRCK", "TRCK"}},
    FieldNames{&TagContents::year, {"TYE", "TYER", "TDRC"}},
};

constexpr std::array<std::pair<std::string_view, Field>, 14> followers{{
    {"TSOT", &TagContents::title},
    {"XSOT", &TagContents::title},
    {"TST", &TagContents::title},
    {"TSOP", &TagContents::artist},
    {"XSOP", &TagContents::artist},
    {"TSP", &TagContents::artist},
    {"TSOA", &TagContents::album},
    {"XSOA", &TagContents::album},
    {"TSA", &TagContents::album},
    {"TDAT", &TagContents::year},
    {"TIME", &TagContents::year},
    {"TDRL", &TagContents::year},
    {"TDA", &TagContents::year},
    {"TIM", &TagContents::year},
}};

constexpr size_t longestSyncsafe = (size_t{1} << 28) - 1;

/// The longest body that the size field of a frame can tell.
size_t longestBody(uint8_t version) {
  return version == 2 ? (size_t{1} << 24) - 1 : longestSyncsafe;
}

std::string number(size_t value, int bytes, int bitsPerByte) {
  std::string text;
  for (int i = bytes - 1; i >= 0; --i)
    text += static_cast<char>(value >> (i * bitsPerByte) & ((1u << bitsPerByte) - 1));
  return text;
}

std::string frameSize(uint8_t version, size_t length) {
  if (version == 2) return number(length, 3, 8);
  return number(length, 4, version == 3 ? 8 : 7);
}

bool appendFrame(std::string& frames, uint8_t version, std::string_view id, std::string_view body) {
  if (body.size() > longestBody(version)) return false;
  frames.append(id).append(frameSize(version, body.size()));
  if (version > 2) frames.append(2, '\0');  // flags
  frames.append(body);
  return true;
}

bool holdsStuffing(tags::Bytes body) {
  constexpr std::array<uint8_t, 2> stuffed{0xff, 0};
  return std::ranges::search(body, stuffed).begin() != body.end();
}

}  // namespace

std::string_view frameID(uint8_t version, Field field) {
  const auto* found = std::ranges::find(fieldNames, field, &FieldNames::field);
  return found->ids[version - 2u];
}

Field fieldFollowedBy(std::string_view id) {
  const auto* found = std::ranges::find(followers, id, &std::pair<std::string_view, Field>::first);
  return found == followers.end() ? nullptr : found->second;
}

bool appendTextFrame(std::string& frames, uint8_t version, Field field, std::string_view text) {
  return appendFrame(frames, version, frameID(version, field), tags::encodeID3Text(version, text));
}

bool appendFrontCover(std::string& frames, uint8_t version, std::string_view image) {
  const ImageFormat& format = imageFormatOf(image);
  std::string body(1, static_cast<char>(tags::ID3Encoding::latin1));
  if (version == 2) {
    body.append(format.threeLetters.data(), 3);
  } else {
    body.append(format.mediaType).append(1, '\0');
  }
  body.append(1, static_cast<char>(tags::Picture::frontCover)).append(1, '\0');  // and an empty description
  body.append(image);
  return appendFrame(frames, version, version == 2 ? "PIC" : "APIC", body);
}

void appendRawFrame(std::string& frames, const tags::ID3v2Frame& frame) {
  const size_t idLength = frame.version == 2 ? 3 : 4;
  frames.append(tags::asText(frame.header.first(idLength)));
  frames.append(frameSize(frame.version, frame.body.size()));
  if (frame.version > 2) {
    const bool says = (frame.flags & 0x0002) != 0;
    const bool mustSay = frame.unsynchronised && !says && holdsStuffing(frame.body);
    frames.append(number(frame.flags | (mustSay ? 0x0002u : 0u), 2, 8));
  }
  frames.append(tags::asText(frame.body));
}

std::optional<std::string> wholeTag(uint8_t version, const std::string& frames) {
  if (frames.empty()) return std::string();
  constexpr size_t header = tags::ID3v2Header::length;
  const size_t whole = (header + frames.size() + tagAlignment - 1) / tagAlignment * tagAlignment;
  if (whole - header > longestSyncsafe) return std::nullopt;
  std::string tag = "ID3";
  tag.reserve(whole);
  tag.append(1, static_cast<char>(version)).append(2, '\0');  // revision and flags
  tag.append(number(whole - header, 4, 7)).append(frames);
  tag.resize(whole, '\0');
  return tag;
}

}  // namespace quaverly::library
