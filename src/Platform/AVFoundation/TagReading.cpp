#include "Platform/AVFoundation/TagReading.h"

#include <algorithm>
#include <iterator>
#include <ranges>

#include "Platform/AVFoundation/FileBytes.h"
#include "Platform/AVFoundation/ID3v1.h"
#include "Platform/AVFoundation/ID3v2Reading.h"
#include "Platform/AVFoundation/TagLibReading.h"

namespace quaverly::tags {
namespace {

/// The first tag of a file is read last, so that its word holds.
TagContents readID3v2Tags(TagsAround& tags) {
  TagContents contents{.format = "ID3v2"};
  for (auto& tag : tags.trailing) readID3v2(tag.header, tag.bytes, contents);
  for (auto& tag : std::views::reverse(tags.leading)) readID3v2(tag.header, tag.bytes, contents);
  return contents;
}

TagContents readAPETags(const TagsAround& tags) {
  TagContents contents{.format = "APE"};
  for (const auto& tag : tags.behind) {
    if (tag.ape) readAPE(*tag.ape, tag.bytes, contents);
  }
  return contents;
}

TagContents readID3v1Tag(const TagsAround& tags) {
  TagContents contents{.format = "ID3v1"};
  const Bytes tag = tags.id3v1.bytes();
  if (ID3v1::isTag(tag)) ID3v1::read(tag, contents);
  return contents;
}

/// Leaves of `contents` what none of the better groups says.
void keepWhatIsMissing(TagContents& contents, const std::vector<TagContents>& better) {
  for (const auto field : TagContents::texts) {
    const auto says = [&](const TagContents& group) { return (group.*field).has_value(); };
    if (std::ranges::any_of(better, says)) contents.*field = std::nullopt;
  }
}

/// Whether the file can have such tags: a text does not become audio because it ends like an ID3v1 tag.
bool isMpegAudio(int descriptor, const TagsAround& around) {
  return !around.leading.empty() || containsMpegAudio(descriptor, around.audioOffset, around.audioEnd);
}

}  // namespace

std::vector<TagContents> readTags(int descriptor, TagsAround& around) {
  const bool mayBeMpeg = around.container == Container::mpeg || around.container == Container::other;
  if (mayBeMpeg && !isMpegAudio(descriptor, around)) return {};
  std::vector<TagContents> groups;
  if (mayBeMpeg) groups.push_back(readAPETags(around));
  groups.push_back(readID3v2Tags(around));
  if (!mayBeMpeg) groups.push_back(readWithTagLib(descriptor, around));
  auto last = readID3v1Tag(around);
  keepWhatIsMissing(last, groups);
  groups.insert(groups.begin(), std::move(last));
  std::erase_if(groups, [](const TagContents& group) { return group.isEmpty(); });
  return groups;
}

std::vector<TagContents> readTags(int descriptor) {
  const auto length = lengthOfFile(descriptor);
  if (!length) return {};
  auto around = TagsAround::read(descriptor, *length);
  return readTags(descriptor, around);
}

}  // namespace quaverly::tags
