#include "Host/Library/DownloadMetadata.h"

#include <chrono>
#include <nlohmann/json.hpp>

namespace quaverly::library {
namespace {

using JSON = nlohmann::ordered_json;

/// Calls `visit` with the name and the place of every value, so that writing and reading cannot differ.
template <class Metadata, class Visitor>
void visitValues(Metadata& metadata, const Visitor& visit) {
  visit("kind", metadata.kind);
  visit("title", metadata.title);
  visit("sortTitle", metadata.sortTitle);
  visit("artistName", metadata.artistName);
  visit("sortArtistName", metadata.sortArtistName);
  visit("collectionName", metadata.collectionName);
  visit("sortCollectionName", metadata.sortCollectionName);
  visit("genre", metadata.genre);
  visit("shortDescription", metadata.shortDescription);
  visit("longDescription", metadata.longDescription);
  visit("fileExtension", metadata.fileExtension);
  visit("bundleIdentifier", metadata.bundleIdentifier);
  visit("transactionIdentifier", metadata.transactionIdentifier);
  visit("primaryAssetURL", metadata.primaryAssetURL);
  visit("thumbnailImageURL", metadata.thumbnailImageURL);
  visit("fullSizeImageURL", metadata.fullSizeImageURL);
  visit("cancelDownloadURL", metadata.cancelDownloadURL);
  visit("indexInCollection", metadata.indexInCollection);
  visit("releaseYear", metadata.releaseYear);
  visit("itemIdentifier", metadata.itemIdentifier);
  visit("artworkIsPrerendered", metadata.artworkIsPrerendered);
  visit("automaticDownload", metadata.automaticDownload);
  visit("redownloadDownload", metadata.redownloadDownload);
  visit("compilation", metadata.compilation);
  visit("rental", metadata.rental);
  visit("sample", metadata.sample);
  visit("purchaseDate", metadata.purchaseDate);
}

Clock::Date inMilliseconds(Clock::Date date) {
  return std::chrono::floor<std::chrono::milliseconds>(date);
}

void write(JSON& json, const Clock::Date& date) {
  json = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch()).count();
}
template <class Value>
void write(JSON& json, const Value& value) {
  json = value;
}

void read(const JSON& json, Clock::Date& date) {
  date = Clock::Date(std::chrono::milliseconds(json.get<int64_t>()));
}
template <class Value>
void read(const JSON& json, Value& value) {
  value = json.get<Value>();
}

std::optional<std::string> text(const std::optional<NSURL>& url) {
  if (!url) return std::nullopt;
  return url->absoluteString();
}

std::optional<std::string> unlessEmpty(const std::optional<std::string>& text) {
  return text && !text->empty() ? text : std::nullopt;
}

}  // namespace

DownloadMetadata DownloadMetadata::of(const SSDownloadMetadata& metadata) {
  DownloadMetadata values;
  values.kind = metadata.kind();
  values.title = metadata.title();
  values.sortTitle = metadata.sortTitle();
  values.artistName = metadata.artistName();
  values.sortArtistName = metadata.sortArtistName();
  values.collectionName = metadata.collectionName();
  values.sortCollectionName = metadata.sortCollectionName();
  values.genre = metadata.genre();
  values.shortDescription = metadata.shortDescription();
  values.longDescription = metadata.longDescription();
  values.fileExtension = metadata.fileExtension();
  values.bundleIdentifier = metadata.bundleIdentifier();
  values.transactionIdentifier = metadata.transactionIdentifier();
  values.primaryAssetURL = text(metadata.primaryAssetURL());
  values.thumbnailImageURL = text(metadata.thumbnailImageURL());
  values.fullSizeImageURL = text(metadata.fullSizeImageURL());
  values.cancelDownloadURL = text(metadata.cancelDownloadURL());
  values.indexInCollection = metadata.indexInCollection();
  values.releaseYear = metadata.releaseYear();
  values.itemIdentifier = metadata.itemIdentifier();
  values.artworkIsPrerendered = metadata.artworkIsPrerendered();
  values.automaticDownload = metadata.automaticDownload();
  values.redownloadDownload = metadata.redownloadDownload();
  values.compilation = metadata.compilation();
  values.rental = metadata.rental();
  values.sample = metadata.sample();
  if (metadata.purchaseDate()) values.purchaseDate = inMilliseconds(*metadata.purchaseDate());
  return values;
}

SongTags DownloadMetadata::tags() const {
  return {.title = unlessEmpty(title),
          .artist = unlessEmpty(artistName),
          .album = unlessEmpty(collectionName),
          .trackNumber = indexInCollection.value_or(0),
          .year = releaseYear.value_or(0)};
}

std::string DownloadMetadata::json() const {
  JSON json = JSON::object();
  visitValues(*this, [&](const char* name, const auto& value) {
    if (value) write(json[name], *value);
  });
  return json.dump(-1, ' ', false, JSON::error_handler_t::replace);
}

Result<DownloadMetadata> DownloadMetadata::fromJSON(std::string_view text) {
  DownloadMetadata metadata;
  try {
    const JSON json = JSON::parse(text);
    visitValues(metadata, [&](const char* name, auto& value) {
      if (json.contains(name)) read(json[name], value.emplace());
    });
  } catch (const JSON::exception&) {
    return Failure{"What the catalogue says about the song is damaged."};
  }
  return metadata;
}

}  // namespace quaverly::library
