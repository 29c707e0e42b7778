#include "Platform/AVFoundation/TagsAround.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "Platform/AVFoundation/ID3v1.h"

namespace quaverly::tags {
namespace {

/// More tags in a row than any file has; the rest is left to the audio.
constexpr size_t mostTagsInARow = 8;

/// Finds the tags in front of the audio, one after the other, and what follows them.
class LeadingTags {
 public:
  LeadingTags(int descriptor, TagsAround& tags) : _descriptor(descriptor), _tags(tags) {}

  void read() {
    Bytes beginning = part(_mark, 0, readAt(_descriptor, 0, _mark));
    while (const auto header = ID3v2Header::parse(beginning)) {
      if (_tags.leading.size() == mostTagsInARow) break;
      beginning = passTag(*header);
    }
    _tags.container = containerOf(beginning);
  }

 private:
  /// Returns what follows the tag.
  Bytes passTag(const ID3v2Header& header) {
    const uint64_t length = std::min(header.tagLength(), _tags.fileLength - _tags.audioOffset);
    _tags.leading.push_back({header, LazyBytes(_descriptor, _tags.audioOffset, length)});
    _tags.audioOffset += length;
    return part(_mark, 0, readAt(_descriptor, _tags.audioOffset, _mark));
  }

  std::array<uint8_t, containerMarkLength> _mark{};
  int _descriptor;
  TagsAround& _tags;
};

/// Reads the tags behind the audio, the last one first.
class TrailingTags {
 public:
  TrailingTags(int descriptor, TagsAround& tags) : _descriptor(descriptor), _tags(tags) {}

  void read() {
    takeID3v1();
    for (size_t i = 0; i < mostTagsInARow; ++i) {
      if (!takeAPE() && !takeLyrics() && !takeID3v2()) return;
    }
  }

 private:
  /// The last `length` bytes of what is left; empty when there are not so many.
  Bytes last(size_t length) {
    const uint64_t end = _tags.audioEnd;
    if (end - _tags.audioOffset < length) return {};
    if (_window.bytes().empty() || end - length < _windowOffset) {
      const auto wanted = std::min<uint64_t>(windowLength, end - _tags.audioOffset);
      _windowOffset = end - wanted;
      _window = FileBytes::read(_descriptor, _windowOffset, static_cast<size_t>(wanted));
    }
    return part(_window.bytes(), static_cast<size_t>(end - length - _windowOffset), length);
  }

  /// Whether so much is there to be taken.
  bool isThere(uint64_t length) const { return length <= _tags.audioEnd - _tags.audioOffset; }

  FileBytes take(uint64_t length) {
    _tags.audioEnd -= length;
    return FileBytes::read(_descriptor, _tags.audioEnd, static_cast<size_t>(length));
  }

  void takeID3v1() {
    if (ID3v1::isTag(last(ID3v1::length))) _tags.id3v1 = take(ID3v1::length);
  }

  bool takeAPE() {
    const auto footer = APEFooter::parse(last(APEFooter::length));
    if (!footer || !isThere(footer->tagLength())) return false;
    _tags.behind.push_back({footer, take(footer->tagLength())});
    return true;
  }

  bool takeID3v2() {
    const auto footer = ID3v2Header::parseFooter(last(ID3v2Header::length));
    if (!footer || !isThere(footer->tagLength())) return false;
    _tags.audioEnd -= footer->tagLength();
    _tags.trailing.push_back({*footer, LazyBytes(_descriptor, _tags.audioEnd, footer->tagLength())});
    return true;
  }

  /// Lyrics end with their length in six digits and a mark. They say nothing that we read.
  bool takeLyrics() {
    constexpr std::string_view mark = "LYRICS200";
    constexpr size_t digits = 6;
    const auto end = asText(last(digits + mark.size()));
    uint64_t length = 0;
    if (!end.ends_with(mark) ||
        std::from_chars(end.data(), end.data() + digits, length).ptr != end.data() + digits)
      return false;
    length += end.size();
    if (!isThere(length)) return false;
    _tags.behind.push_back({std::nullopt, take(length)});
    return true;
  }

  static constexpr size_t windowLength = ID3v1::length + APEFooter::length;
  int _descriptor;
  TagsAround& _tags;
  FileBytes _window;
  uint64_t _windowOffset = 0;
};

}  // namespace

TagsAround TagsAround::read(int descriptor, uint64_t length) {
  TagsAround tags;
  tags.fileLength = tags.audioEnd = length;
  LeadingTags(descriptor, tags).read();
  TrailingTags(descriptor, tags).read();
  return tags;
}

}  // namespace quaverly::tags
