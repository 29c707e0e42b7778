#pragma once

#include <optional>
#include <string>

#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NSURL.h"

namespace quaverly {

class SSDownloadMetadata;
class iTunesSongItem;

/// Puts one audio file that lies on the device into its music library: describes it as a store download whose
/// asset lies on the local import server, and hands that to the platform's music download manager.
///
/// Used once: fill the properties, send `import`, let go. Keeps a copy of each value. Main thread.
class QVImporter : public NSObject {
 public:
  using Text = std::optional<std::string>;

  /// One that is filled from a song's record, with a new item identifier where `systemTakesItemIdentifiers`.
  static Ref<QVImporter> importerForSong(const iTunesSongItem& song, std::optional<NSURLRequest> request);

  const Text& title() const { return _title; }
  void setTitle(Text title) { _title = std::move(title); }
  const Text& artist() const { return _artist; }
  void setArtist(Text artist) { _artist = std::move(artist); }
  const Text& album() const { return _album; }
  void setAlbum(Text album) { _album = std::move(album); }
  const Text& genre() const { return _genre; }
  void setGenre(Text genre) { _genre = std::move(genre); }
  /// URL strings of the full-size and of the small cover.
  const Text& artwork() const { return _artwork; }
  void setArtwork(Text artwork) { _artwork = std::move(artwork); }
  const Text& thumbnail() const { return _thumbnail; }
  void setThumbnail(Text thumbnail) { _thumbnail = std::move(thumbnail); }
  /// Decimal texts; one that is no number counts as 0.
  const Text& indexInCollection() const { return _indexInCollection; }
  void setIndexInCollection(Text index) { _indexInCollection = std::move(index); }
  const Text& releaseYear() const { return _releaseYear; }
  void setReleaseYear(Text year) { _releaseYear = std::move(year); }
  /// A store identifier as decimal text; used only where `systemTakesItemIdentifiers`.
  const Text& itemID() const { return _itemID; }
  void setItemID(Text itemID) { _itemID = std::move(itemID); }
  /// The request whose URL is the file's absolute path, percent-escaped for a URL's query. `import` points it
  /// at the import server.
  const std::optional<NSURLRequest>& downloadRequest() const { return _downloadRequest; }
  void setDownloadRequest(std::optional<NSURLRequest> request) { _downloadRequest = std::move(request); }

  /// Hands the download over and returns at once; nothing is reported back. Without the store's framework or
  /// one of its classes it does nothing.
  void import();

  /// Whether downloads carry item identifiers on this system: from version 8.3 on, where the version is read
  /// in single precision and compared in double, so that 8.3 itself counts and 8.29 does not.
  static bool systemTakesItemIdentifiers();

  /// A new identifier between 10000000 and 915794176, worked out in single precision.
  static std::string randomItemID();

 private:
  void rewriteRequestURL();
  void describe(const Ref<SSDownloadMetadata>& metadata) const;
  void describeSong(const Ref<SSDownloadMetadata>& metadata) const;
  void describePurchase(const Ref<SSDownloadMetadata>& metadata) const;
  void handOver(const Ref<SSDownloadMetadata>& metadata) const;

  Text _title;
  Text _artist;
  Text _album;
  Text _genre;
  Text _artwork;
  Text _thumbnail;
  Text _indexInCollection;
  Text _releaseYear;
  Text _itemID;
  std::optional<NSURLRequest> _downloadRequest;
};

}  // namespace quaverly
