#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/AVFoundation/AVMetadataItem.h"
#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NSURL.h"

namespace quaverly {

/// A media file and what its tags say, a group of items per tag format, the richest format last. The file is
/// told by its content, whatever its name; one that is no audio, or cannot be read, has no formats.
///
/// Title, artist, album and artwork carry the common keys "title", "artist", "albumName" and "artwork"; front
/// covers come after other pictures. The last items of a group have no common key: its genre, its track
/// number and its year, as far as it has them. Nothing else is reported.
class AVURLAsset : public NSObject {
 public:
  /// Reads the tags, and no more, before it returns; the file is closed then. There are no options.
  static Ref<AVURLAsset> URLAssetWithURLOptions(const NSURL& url, std::nullptr_t options);

  const std::vector<std::string>& availableMetadataFormats() const { return _formats; }

  /// The items of a format, in order; empty for a format that the file has not.
  std::vector<AVMetadataItem> metadataForFormat(std::string_view format) const;

 private:
  std::vector<std::string> _formats;
  std::vector<std::vector<AVMetadataItem>> _items;  // of the formats, in the same order
};

}  // namespace quaverly
