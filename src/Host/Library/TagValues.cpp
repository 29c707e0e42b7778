#include "Host/Library/TagValues.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "Platform/Foundation/NSString.h"

namespace quaverly::library {
namespace {

using tags::TagContents;
using Text = std::optional<std::string>;

/// The number that a reader finds in what is written for a field; 0 for none.
int32_t numberRead(Field field, std::string_view written) {
  const auto text = field == &TagContents::year ? tags::yearOf(written) : Text(tags::trackNumberOf(written));
  return text ? NSStringIntValue(*text) : 0;
}

Text writableText(const Text& text) {
  if (!text) return std::nullopt;
  auto valid = NSStringWithReplacements(std::string_view(*text).substr(0, text->find('\0')));
  return valid.empty() ? std::nullopt : Text(std::move(valid));
}

std::string trackText(int32_t number) {
  return number > 0 ? std::to_string(number) : std::string();
}

/// Four digits, as dates in tags are written.
std::string yearText(int32_t year) {
  if (year <= 0) return {};
  const std::string digits = std::to_string(year);
  return std::string(4 - std::min<size_t>(digits.size(), 4), '0') + digits;
}

/// The number, or none where it is less than one or more than a tag can hold.
int32_t upTo(int32_t most, int32_t number) {
  return number > 0 && number <= most ? number : 0;
}

Text fieldOf(const std::vector<TagContents>& groups, Field field) {
  Text text;
  for (const auto& group : groups) {
    if (group.*field) text = group.*field;
  }
  return writableText(text);
}

}  // namespace

SongTags writable(const SongTags& tags) {
  return {.title = writableText(tags.title),
          .artist = writableText(tags.artist),
          .album = writableText(tags.album),
          .trackNumber = upTo(largestTrackNumber, tags.trackNumber),
          .year = upTo(largestYear, tags.year)};
}

std::string valueOf(const SongTags& tags, Field field) {
  if (field == &TagContents::title) return tags.title.value_or("");
  if (field == &TagContents::artist) return tags.artist.value_or("");
  if (field == &TagContents::album) return tags.album.value_or("");
  return field == &TagContents::track ? trackText(tags.trackNumber) : yearText(tags.year);
}

bool readsTo(std::string_view wanted, Field field, std::string_view written) {
  const bool isNumber = field == &TagContents::track || field == &TagContents::year;
  return written == wanted || (isNumber && numberRead(field, written) == NSStringIntValue(wanted));
}

SongTags songTagsOf(const std::vector<TagContents>& groups) {
  return {.title = fieldOf(groups, &TagContents::title),
          .artist = fieldOf(groups, &TagContents::artist),
          .album = fieldOf(groups, &TagContents::album),
          .trackNumber =
              upTo(largestTrackNumber, NSStringIntValue(fieldOf(groups, &TagContents::track).value_or(""))),
          .year = std::max(NSStringIntValue(fieldOf(groups, &TagContents::year).value_or("")), 0)};
}

}  // namespace quaverly::library
