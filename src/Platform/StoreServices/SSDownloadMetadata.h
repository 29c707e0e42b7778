#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Device/Clock.h"
#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NSURL.h"

namespace quaverly {

/// What a download describes itself as: the platform-neutral record of a purchase. A value is absent until it
/// is set, and the last setter wins.
class SSDownloadMetadata : public NSObject {
 public:
  /// A property of the metadata, with its getter and setter below.
  template <class Value>
  using Property = std::optional<Value>;

  SSDownloadMetadata* initWithKind(std::string kind);
  const Property<std::string>& kind() const { return _kind; }

  const Property<Clock::Date>& purchaseDate() const { return _purchaseDate; }
  void setPurchaseDate(Property<Clock::Date> value) { _purchaseDate = value; }
  const Property<NSURL>& primaryAssetURL() const { return _primaryAssetURL; }
  void setPrimaryAssetURL(Property<NSURL> value) { _primaryAssetURL = std::move(value); }
  const Property<std::string>& shortDescription() const { return _shortDescription; }
  void setShortDescription(Property<std::string> value) { _shortDescription = std::move(value); }
  const Property<std::string>& longDescription() const { return _longDescription; }
  void setLongDescription(Property<std::string> value) { _longDescription = std::move(value); }
  const Property<std::string>& title() const { return _title; }
  void setTitle(Property<std::string> value) { _title = std::move(value); }
  const Property<std::string>& sortTitle() const { return _sortTitle; }
  void setSortTitle(Property<std::string> value) { _sortTitle = std::move(value); }
  const Property<std::string>& artistName() const { return _artistName; }
  void setArtistName(Property<std::string> value) { _artistName = std::move(value); }
  const Property<std::string>& sortArtistName() const { return _sortArtistName; }
  void setSortArtistName(Property<std::string> value) { _sortArtistName = std::move(value); }
  const Property<std::string>& collectionName() const { return _collectionName; }
  void setCollectionName(Property<std::string> value) { _collectionName = std::move(value); }
  const Property<std::string>& sortCollectionName() const { return _sortCollectionName; }
  void setSortCollectionName(Property<std::string> value) { _sortCollectionName = std::move(value); }
  const Property<int32_t>& indexInCollection() const { return _indexInCollection; }
  void setIndexInCollection(Property<int32_t> value) { _indexInCollection = value; }
  const Property<std::string>& genre() const { return _genre; }
  void setGenre(Property<std::string> value) { _genre = std::move(value); }
  const Property<int32_t>& releaseYear() const { return _releaseYear; }
  void setReleaseYear(Property<int32_t> value) { _releaseYear = value; }
  const Property<NSURL>& thumbnailImageURL() const { return _thumbnailImageURL; }
  void setThumbnailImageURL(Property<NSURL> value) { _thumbnailImageURL = std::move(value); }
  const Property<NSURL>& fullSizeImageURL() const { return _fullSizeImageURL; }
  void setFullSizeImageURL(Property<NSURL> value) { _fullSizeImageURL = std::move(value); }
  const Property<std::string>& fileExtension() const { return _fileExtension; }
  void setFileExtension(Property<std::string> value) { _fileExtension = std::move(value); }
  const Property<bool>& artworkIsPrerendered() const { return _artworkIsPrerendered; }
  void setArtworkIsPrerendered(Property<bool> value) { _artworkIsPrerendered = value; }
  const Property<bool>& automaticDownload() const { return _automaticDownload; }
  void setAutomaticDownload(Property<bool> value) { _automaticDownload = value; }
  const Property<bool>& redownloadDownload() const { return _redownloadDownload; }
  void setRedownloadDownload(Property<bool> value) { _redownloadDownload = value; }
  const Property<bool>& compilation() const { return _compilation; }
  void setCompilation(Property<bool> value) { _compilation = value; }
  const Property<bool>& rental() const { return _rental; }
  void setRental(Property<bool> value) { _rental = value; }
  const Property<bool>& sample() const { return _sample; }
  void setSample(Property<bool> value) { _sample = value; }
  const Property<std::string>& bundleIdentifier() const { return _bundleIdentifier; }
  void setBundleIdentifier(Property<std::string> value) { _bundleIdentifier = std::move(value); }
  const Property<std::string>& transactionIdentifier() const { return _transactionIdentifier; }
  void setTransactionIdentifier(Property<std::string> value) { _transactionIdentifier = std::move(value); }
  const Property<NSURL>& cancelDownloadURL() const { return _cancelDownloadURL; }
  void setCancelDownloadURL(Property<NSURL> value) { _cancelDownloadURL = std::move(value); }
  const Property<int32_t>& itemIdentifier() const { return _itemIdentifier; }
  void setItemIdentifier(Property<int32_t> value) { _itemIdentifier = value; }

 private:
  Property<std::string> _kind;
  Property<Clock::Date> _purchaseDate;
  Property<NSURL> _primaryAssetURL;
  Property<std::string> _shortDescription;
  Property<std::string> _longDescription;
  Property<std::string> _title;
  Property<std::string> _sortTitle;
  Property<std::string> _artistName;
  Property<std::string> _sortArtistName;
  Property<std::string> _collectionName;
  Property<std::string> _sortCollectionName;
  Property<int32_t> _indexInCollection;
  Property<std::string> _genre;
  Property<int32_t> _releaseYear;
  Property<NSURL> _thumbnailImageURL;
  Property<NSURL> _fullSizeImageURL;
  Property<std::string> _fileExtension;
  Property<bool> _artworkIsPrerendered;
  Property<bool> _automaticDownload;
  Property<bool> _redownloadDownload;
  Property<bool> _compilation;
  Property<bool> _rental;
  Property<bool> _sample;
  Property<std::string> _bundleIdentifier;
  Property<std::string> _transactionIdentifier;
  Property<NSURL> _cancelDownloadURL;
  Property<int32_t> _itemIdentifier;
};

}  // namespace quaverly
