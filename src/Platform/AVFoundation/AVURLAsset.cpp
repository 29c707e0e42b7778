#include "Platform/AVFoundation/AVURLAsset.h"

#include <algorithm>

#include "Platform/AVFoundation/FileBytes.h"
#include "Platform/AVFoundation/TagReading.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly {
namespace {

using Items = std::vector<AVMetadataItem>;

void addText(Items& items, const char* commonKey, const std::optional<std::string>& text) {
  const auto key = commonKey ? std::optional<std::string>(commonKey) : std::nullopt;
  if (text) items.emplace_back(key, *text);
}

AVMetadataItem::Value artworkValue(const tags::TagContents& contents, const tags::Picture& picture) {
  if (contents.format == "ID3v2") return AVMetadataItem::Dictionary{{"data", picture.data}};
  return picture.data;
}

void addPictures(Items& items, const tags::TagContents& contents) {
  for (const bool wantFront : {false, true}) {
    for (const auto& picture : contents.pictures) {
      const bool isFront = picture.kind == tags::Picture::frontCover;
      if (isFront == wantFront) items.emplace_back("artwork", artworkValue(contents, picture));
    }
  }
}

Items itemsOf(const tags::TagContents& contents) {
  Items items;
  addText(items, "title", contents.title);
  addText(items, "artist", contents.artist);
  addText(items, "albumName", contents.album);
  addPictures(items, contents);
  addText(items, nullptr, contents.genre);
  // The screen tells a track number from a year and a genre by its being shorter.
  if (contents.track && NSStringLength(*contents.track) < 4) addText(items, nullptr, contents.track);
  addText(items, nullptr, contents.year);
  return items;
}

}  // namespace

Ref<AVURLAsset> AVURLAsset::URLAssetWithURLOptions(const NSURL& url, std::nullptr_t) {
  auto asset = make<AVURLAsset>();
  const auto path = url.path();
  const auto file = path ? tags::openRegularFile(*path) : std::nullopt;
  if (!file) return asset;
  for (const auto& contents : tags::readTags(file->number())) {
    asset->_formats.push_back(contents.format);
    asset->_items.push_back(itemsOf(contents));
  }
  return asset;
}

std::vector<AVMetadataItem> AVURLAsset::metadataForFormat(std::string_view format) const {
  const auto found = std::ranges::find(_formats, format);
  if (found == _formats.end()) return {};
  return _items[static_cast<size_t>(found - _formats.begin())];
}

}  // namespace quaverly
