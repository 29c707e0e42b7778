#include "Host/Library/TrailingTags.h"

#include <algorithm>
#include <ranges>

#include "Platform/AVFoundation/ID3Text.h"
#include "Platform/AVFoundation/ID3v1.h"

namespace quaverly::library {
namespace {

using tags::APEItem;
using tags::Bytes;
using tags::ID3v1;
using tags::TagContents;

std::string littleEndianText(size_t value) {
  std::string text;
  for (int shift = 0; shift < 32; shift += 8) text += static_cast<char>(value >> shift & 0xff);
  return text;
}

std::string textItem(std::string_view key, std::string_view value) {
  return littleEndianText(value.size()).append(4, '\0').append(key).append(1, '\0').append(value);
}

/// Items that tell the order of a name, and go when it changes.
bool isSortKeyOfChanged(std::string_view key, const TagChange& change) {
  constexpr std::string_view suffix = "SORT";
  std::string upper(key);
  for (char& c : upper) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  if (!upper.ends_with(suffix)) return false;
  const auto field = tags::fieldOfAPEKey(upper.substr(0, upper.size() - suffix.size()));
  return field && change.changes(field);
}

/// What an item becomes; empty when it goes.
std::string rewrittenItem(const APEItem& item, const TagChange& change, ArtworkChange::Kind artwork) {
  const auto asFound = std::string(tags::asText(item.whole));
  if (tags::isAPEPictureKey(item.key)) return artwork == ArtworkChange::Kind::keep ? asFound : std::string();
  if (isSortKeyOfChanged(item.key, change)) return {};
  const auto field = tags::fieldOfAPEKey(item.key);
  if (!field || field == &TagContents::genre || !item.isText) return asFound;
  const auto wanted = valueOf(change.wanted, field);
  if (readsTo(wanted, field, tags::decodeID3Text(tags::ID3Encoding::utf8, item.value))) return asFound;
  return wanted.empty() ? std::string() : textItem(item.key, wanted);
}

/// A header or footer with another length and number of items.
std::string withNumbers(Bytes ends, size_t itemsLength, size_t count) {
  std::string bytes(tags::asText(ends));
  bytes.replace(12, 4, littleEndianText(itemsLength + tags::APEFooter::length));
  bytes.replace(16, 4, littleEndianText(count));
  return bytes;
}

std::string rewrittenAPE(const tags::APEFooter& footer, Bytes tag, const TagChange& change,
                         ArtworkChange::Kind artwork) {
  tags::APEItems items(footer, tag);
  std::string kept;
  size_t count = 0;
  while (const auto item = items.next()) {
    const auto becomes = rewrittenItem(*item, change, artwork);
    count += !becomes.empty();
    kept += becomes;
  }
  if (count == 0) return {};
  constexpr size_t length = tags::APEFooter::length;
  const auto header = footer.hasHeader ? withNumbers(tag.first(length), kept.size(), count) : std::string();
  return header + kept + withNumbers(tag.last(length), kept.size(), count);
}

/// As much of a text as a field has room for.
std::string fieldText(std::string_view text, size_t room) {
  return tags::toLatin1(text).substr(0, room);
}

bool isLatin1(const std::string& text) {
  return tags::decodeID3Text(tags::ID3Encoding::latin1, tags::asBytes(tags::toLatin1(text))) == text;
}

/// Puts a value into a field unless it stands there already. One that Latin-1 cannot write leaves an
/// unchanged field alone: taggers have put other alphabets there in their own ways.
void putText(std::string& tag, ID3v1::Range range, Field field, const TagChange& change) {
  const auto wanted = valueOf(change.wanted, field);
  auto text = fieldText(wanted, range.length);
  const auto there = std::string_view(tag).substr(range.offset, range.length);
  const auto found = there.substr(0, there.find('\0'));
  if (found.substr(0, found.find_last_not_of(' ') + 1) == text.substr(0, text.find_last_not_of(' ') + 1))
    return;
  if (!isLatin1(wanted) && !change.changes(field)) return;
  text.resize(range.length, '\0');
  tag.replace(range.offset, range.length, text);
}

/// The track number stands at the end of the comment, where a long comment leaves no room for it.
void putTrack(std::string& tag, int32_t track) {
  char& zero = tag[ID3v1::track.offset];
  char& number = tag[ID3v1::track.offset + 1];
  if (zero == '\0') number = track <= 255 ? static_cast<char>(track) : '\0';
}

std::string rewrittenID3v1(Bytes found, const TagChange& change) {
  std::string tag(tags::asText(found));
  putText(tag, ID3v1::title, &TagContents::title, change);
  putText(tag, ID3v1::artist, &TagContents::artist, change);
  putText(tag, ID3v1::album, &TagContents::album, change);
  putText(tag, ID3v1::year, &TagContents::year, change);
  putTrack(tag, change.wanted.trackNumber);
  return tag;
}

}  // namespace

std::string rewrittenTail(const tags::TagsAround& around, const TagChange& change,
                          ArtworkChange::Kind artwork) {
  std::string tail;
  for (const auto& behind : std::views::reverse(around.behind)) {
    const Bytes bytes = behind.bytes.bytes();
    tail += behind.ape ? rewrittenAPE(*behind.ape, bytes, change, artwork) : std::string(tags::asText(bytes));
  }
  if (ID3v1::isTag(around.id3v1.bytes())) tail += rewrittenID3v1(around.id3v1.bytes(), change);
  return tail;
}

}  // namespace quaverly::library
