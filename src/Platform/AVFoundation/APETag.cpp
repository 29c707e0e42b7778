#include "Platform/AVFoundation/APETag.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "Platform/AVFoundation/ID3Genre.h"
#include "Platform/AVFoundation/ID3Text.h"

namespace quaverly::tags {
namespace {

constexpr size_t mostItems = 500;
constexpr size_t longestKey = 255;
constexpr std::string_view pictureKey = "COVER ART (";
constexpr std::string_view frontCoverKey = "COVER ART (FRONT)";

constexpr std::array<std::pair<std::string_view, TagContents::Field>, 6> textItems{{
    {"TITLE", &TagContents::title},
    {"ARTIST", &TagContents::artist},
    {"ALBUM", &TagContents::album},
    {"GENRE", &TagContents::genre},
    {"TRACK", &TagContents::track},
    {"YEAR", &TagContents::year},
}};

std::string upperCase(std::string_view key) {
  std::string upper(key);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

void readText(TagContents::Field field, Bytes value, TagContents& contents) {
  if (value.size() > longestText) return;
  std::string text = decodeID3Text(ID3Encoding::utf8, value);
  if (field == &TagContents::genre) text = genreOf(text).value_or("");
  contents.set(field, std::move(text));
}

/// A picture's value is a file name, a zero and the picture.
void readPicture(const APEItem& item, const FileBytes& tag, TagContents& contents) {
  const Bytes image = item.value.subspan(terminatedLength(ID3Encoding::latin1, item.value));
  if (image.empty()) return;
  const uint8_t kind = upperCase(item.key) == frontCoverKey ? Picture::frontCover : uint8_t{0};
  contents.pictures.push_back({kind, tag.share(image)});
}

}  // namespace

std::optional<APEFooter> APEFooter::parse(Bytes bytes) {
  if (bytes.size() < length || !asText(bytes).starts_with("APETAGEX")) return std::nullopt;
  const uint32_t declared = littleEndian(bytes.subspan(12, 4));  // the items and this footer
  const uint32_t flags = littleEndian(bytes.subspan(20, 4));
  const bool isHeader = (flags & 0x20000000) != 0;
  if (declared < length || isHeader) return std::nullopt;
  return APEFooter{.itemsLength = declared - static_cast<uint32_t>(length),
                   .items = littleEndian(bytes.subspan(16, 4)),
                   .hasHeader = (flags & 0x80000000) != 0};
}

APEItems::APEItems(const APEFooter& footer, Bytes tag)
    : _rest(part(tag, footer.hasHeader ? APEFooter::length : 0, footer.itemsLength)) {}

std::optional<APEItem> APEItems::next() {
  constexpr size_t numbers = 8;
  if (_rest.size() <= numbers) return std::nullopt;
  const size_t length = littleEndian(_rest.first(4));
  const uint32_t flags = littleEndian(_rest.subspan(4, 4));
  const Bytes named = _rest.subspan(numbers);
  const Bytes keyField = part(named, 0, longestKey + 1);
  const size_t key = static_cast<size_t>(std::ranges::find(keyField, 0) - keyField.begin());
  if (key == 0 || key == keyField.size() || length > named.size() - key - 1) return std::nullopt;
  const size_t whole = numbers + key + 1 + length;
  APEItem item{.key = asText(named.first(key)),
               .value = named.subspan(key + 1, length),
               .whole = _rest.first(whole),
               .isText = (flags & 6) == 0};
  _rest = _rest.subspan(whole);
  return item;
}

TagContents::Field fieldOfAPEKey(std::string_view key) {
  const auto* found =
      std::ranges::find(textItems, upperCase(key), &std::pair<std::string_view, TagContents::Field>::first);
  return found == textItems.end() ? nullptr : found->second;
}

bool isAPEPictureKey(std::string_view key) {
  return upperCase(key).starts_with(pictureKey);
}

void readAPE(const APEFooter& footer, const FileBytes& tag, TagContents& contents) {
  APEItems items(footer, tag.bytes());
  for (size_t taken = 0; taken < mostItems; ++taken) {
    const auto item = items.next();
    if (!item) return;
    const auto field = fieldOfAPEKey(item->key);
    if (field && item->isText) readText(field, item->value, contents);
    if (!item->isText && isAPEPictureKey(item->key)) readPicture(*item, tag, contents);
  }
}

}  // namespace quaverly::tags
