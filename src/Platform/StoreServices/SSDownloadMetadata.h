#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Device/Clock.h"
#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NSURL.h"

namespace quaverly {

/// What a download says of itself: the platform-neutral record of a purchase. A property is absent until it
/// is set; when it is set again, the last value counts.
class SSDownloadMetadata : public NSObject {
 public:
  /// The empty alternative is a property that was set to nothing.
  using Value = std::variant<std::monostate, bool, int32_t, std::string, NSURL, Clock::Date>;
  using Text = std::optional<std::string>;
  using Number = std::optional<int32_t>;
  using Flag = std::optional<bool>;
  using Link = std::optional<NSURL>;
  using Date = std::optional<Clock::Date>;

  SSDownloadMetadata* initWithKind(std::string kind);

  /// Every property that was set, by name, in the order in which they were set.
  const std::vector<std::pair<std::string_view, Value>>& assignments() const { return _assignments; }

  Text kind() const { return get<std::string>("kind"); }
  Date purchaseDate() const { return get<Clock::Date>("purchaseDate"); }
  Link primaryAssetURL() const { return get<NSURL>("primaryAssetURL"); }
  Text shortDescription() const { return get<std::string>("shortDescription"); }
  Text longDescription() const { return get<std::string>("longDescription"); }
  Text title() const { return get<std::string>("title"); }
  Text sortTitle() const { return get<std::string>("sortTitle"); }
  Text artistName() const { return get<std::string>("artistName"); }
  Text sortArtistName() const { return get<std::string>("sortArtistName"); }
  Text collectionName() const { return get<std::string>("collectionName"); }
  Text sortCollectionName() const { return get<std::string>("sortCollectionName"); }
  Number indexInCollection() const { return get<int32_t>("indexInCollection"); }
  Text genre() const { return get<std::string>("genre"); }
  Number releaseYear() const { return get<int32_t>("releaseYear"); }
  Link thumbnailImageURL() const { return get<NSURL>("thumbnailImageURL"); }
  Link fullSizeImageURL() const { return get<NSURL>("fullSizeImageURL"); }
  Text fileExtension() const { return get<std::string>("fileExtension"); }
  Flag artworkIsPrerendered() const { return get<bool>("artworkIsPrerendered"); }
  Flag automaticDownload() const { return get<bool>("automaticDownload"); }
  Flag redownloadDownload() const { return get<bool>("redownloadDownload"); }
  Flag compilation() const { return get<bool>("compilation"); }
  Flag rental() const { return get<bool>("rental"); }
  Flag sample() const { return get<bool>("sample"); }
  Text bundleIdentifier() const { return get<std::string>("bundleIdentifier"); }
  Text transactionIdentifier() const { return get<std::string>("transactionIdentifier"); }
  Link cancelDownloadURL() const { return get<NSURL>("cancelDownloadURL"); }
  Number itemIdentifier() const { return get<int32_t>("itemIdentifier"); }

  void setPurchaseDate(Date date) { set("purchaseDate", date); }
  void setPrimaryAssetURL(Link url) { set("primaryAssetURL", std::move(url)); }
  void setShortDescription(Text text) { set("shortDescription", std::move(text)); }
  void setLongDescription(Text text) { set("longDescription", std::move(text)); }
  void setTitle(Text text) { set("title", std::move(text)); }
  void setSortTitle(Text text) { set("sortTitle", std::move(text)); }
  void setArtistName(Text text) { set("artistName", std::move(text)); }
  void setSortArtistName(Text text) { set("sortArtistName", std::move(text)); }
  void setCollectionName(Text text) { set("collectionName", std::move(text)); }
  void setSortCollectionName(Text text) { set("sortCollectionName", std::move(text)); }
  void setIndexInCollection(Number number) { set("indexInCollection", number); }
  void setGenre(Text text) { set("genre", std::move(text)); }
  void setReleaseYear(Number number) { set("releaseYear", number); }
  void setThumbnailImageURL(Link url) { set("thumbnailImageURL", std::move(url)); }
  void setFullSizeImageURL(Link url) { set("fullSizeImageURL", std::move(url)); }
  void setFileExtension(Text text) { set("fileExtension", std::move(text)); }
  void setArtworkIsPrerendered(Flag flag) { set("artworkIsPrerendered", flag); }
  void setAutomaticDownload(Flag flag) { set("automaticDownload", flag); }
  void setRedownloadDownload(Flag flag) { set("redownloadDownload", flag); }
  void setCompilation(Flag flag) { set("compilation", flag); }
  void setRental(Flag flag) { set("rental", flag); }
  void setSample(Flag flag) { set("sample", flag); }
  void setBundleIdentifier(Text text) { set("bundleIdentifier", std::move(text)); }
  void setTransactionIdentifier(Text text) { set("transactionIdentifier", std::move(text)); }
  void setCancelDownloadURL(Link url) { set("cancelDownloadURL", std::move(url)); }
  void setItemIdentifier(Number number) { set("itemIdentifier", number); }

 private:
  template <class T>
  std::optional<T> get(std::string_view property) const {
    const T* value = std::get_if<T>(&latest(property));
    return value ? std::optional<T>(*value) : std::nullopt;
  }
  template <class T>
  void set(std::string_view property, std::optional<T> value) {
    _assignments.emplace_back(property, value ? Value(std::move(*value)) : Value());
  }
  const Value& latest(std::string_view property) const;

  std::vector<std::pair<std::string_view, Value>> _assignments;
};

}  // namespace quaverly
