#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Host/Library/Result.h"
#include "Host/Library/SongTags.h"
#include "Platform/Device/Clock.h"
#include "Platform/StoreServices/SSDownloadMetadata.h"

namespace quaverly::library {

/// What a download said about its song, as it was given: a value is absent where none was set, and the genre
/// is "" where the metadata's was.
struct DownloadMetadata {
  std::optional<std::string> kind;
  std::optional<std::string> title;
  std::optional<std::string> sortTitle;
  std::optional<std::string> artistName;
  std::optional<std::string> sortArtistName;
  std::optional<std::string> collectionName;
  std::optional<std::string> sortCollectionName;
  std::optional<std::string> genre;
  std::optional<std::string> shortDescription;
  std::optional<std::string> longDescription;
  std::optional<std::string> fileExtension;
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> transactionIdentifier;
  std::optional<std::string> primaryAssetURL;
  std::optional<std::string> thumbnailImageURL;
  std::optional<std::string> fullSizeImageURL;
  std::optional<std::string> cancelDownloadURL;
  std::optional<int32_t> indexInCollection;
  std::optional<int32_t> releaseYear;
  std::optional<int32_t> itemIdentifier;
  std::optional<bool> artworkIsPrerendered;
  std::optional<bool> automaticDownload;
  std::optional<bool> redownloadDownload;
  std::optional<bool> compilation;
  std::optional<bool> rental;
  std::optional<bool> sample;
  std::optional<Clock::Date> purchaseDate;  ///< to the millisecond

  static DownloadMetadata of(const SSDownloadMetadata& metadata);

  /// The tags that the metadata decides. Empty texts count as absent.
  SongTags tags() const;

  /// One JSON object with the values that are there, by their names here; the date in milliseconds since
  /// 1970.
  std::string json() const;
  static Result<DownloadMetadata> fromJSON(std::string_view text);

  bool operator==(const DownloadMetadata&) const = default;
};

}  // namespace quaverly::library
