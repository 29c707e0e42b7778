#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Host/Library/CatalogueRecords.h"
#include "Host/Library/Result.h"

namespace quaverly::library {

class Database;

/// The record of every download and of every song filed: one SQLite file in the data folder. It survives a
/// crash of the program at any instant. Several programs and several threads may use it at once, each with a
/// `Catalogue` of its own; an object belongs to one thread at a time.
///
/// Whatever cannot be read or written is a failure whose reason names the file, and nothing was changed.
class Catalogue {
 public:
  /// Opens the catalogue of a data folder and makes both where they are missing, the folder for its owner
  /// alone. Refuses a catalogue that a newer version has written, and a damaged one.
  static Result<Catalogue> open(const std::string& dataFolder);
  Catalogue(Catalogue&&) noexcept;
  ~Catalogue();

  // Downloads.

  /// Adds a download in the state `queued`; gives it its number and the time.
  Result<DownloadID> add(DownloadRecord record);
  /// Nothing when there is no such download.
  Result<std::optional<DownloadRecord>> download(DownloadID id);
  /// All downloads, newest first.
  Result<std::vector<DownloadRecord>> downloads();
  /// The newest ones, newest first.
  Result<std::vector<DownloadRecord>> latestDownloads(size_t limit);
  /// Those that are not in a final state, in the order in which they were added.
  Result<std::vector<DownloadRecord>> unfinishedDownloads();

  /// Stores state, reason, paths, URL and bytes; the rest stays as added. A final state sets the time.
  MaybeFailure update(const DownloadRecord& record);
  /// Stores that a whole song is about to get its name, and returns when that is safe on the disk.
  MaybeFailure intend(const DownloadRecord& record, const SongRecord& song);
  /// The song that a download in the state `placing` was about to become.
  Result<std::optional<SongRecord>> intention(DownloadID id);
  /// Stores the song and its download, in the state `filed`, at once or not at all.
  MaybeFailure file(const DownloadRecord& record, const SongRecord& song);

  /// Whether a download that is not filed needs this copy of a cover.
  Result<bool> needsArtwork(const std::string& artwork);

  /// Runs `work`, calls to this object among it, alone of all who write: all is stored, or with a failure
  /// nothing.
  MaybeFailure transact(const std::function<MaybeFailure()>& work);

  // Songs.

  /// All songs, newest first, whether or not their files are still there.
  Result<std::vector<SongRecord>> songs();
  /// The newest ones of those that were filed before the song with this number, newest first.
  Result<std::vector<SongRecord>> songsBefore(int64_t id, size_t limit);
  /// Nothing when there is no such song.
  Result<std::optional<SongRecord>> song(int64_t id);
  /// The song that a download became; nothing when it became none.
  Result<std::optional<SongRecord>> songOfDownload(DownloadID id);
  /// The songs with this audio, oldest first.
  Result<std::vector<SongRecord>> songsWithAudio(const ContentHash& audio);

 private:
  explicit Catalogue(std::unique_ptr<Database> database);

  std::unique_ptr<Database> _database;
};

}  // namespace quaverly::library
