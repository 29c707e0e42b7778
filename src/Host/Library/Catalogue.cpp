#include "Host/Library/Catalogue.h"

#include "Host/Environment/DataFolder.h"
#include "Host/Library/CatalogueRows.h"
#include "Host/Library/CatalogueSchema.h"
#include "Host/Library/Database.h"
#include "Host/Library/SystemFailure.h"

namespace quaverly::library {
namespace {

template <class Record>
Result<std::optional<Record>> onlyOne(Result<std::vector<Record>> records) {
  if (!records) return records.failure();
  if (records->empty()) return std::optional<Record>();
  return std::optional(std::move(records->front()));
}

MaybeFailure forgetIntention(Database& database, DownloadID id) {
  return database.prepare("DELETE FROM songs WHERE download = ? AND filed IS NULL").bind(id).run();
}

MaybeFailure makeFolder(const std::string& folder) {
  const auto error = host::makeDataFolder(folder);
  if (error) return systemFailure("The data folder " + folder + " cannot be made", error.value());
  return std::nullopt;
}

}  // namespace

Catalogue::Catalogue(std::unique_ptr<Database> database) : _database(std::move(database)) {}
Catalogue::Catalogue(Catalogue&&) noexcept = default;
Catalogue::~Catalogue() = default;

Result<Catalogue> Catalogue::open(const std::string& dataFolder) {
  if (auto failure = makeFolder(dataFolder)) return *failure;
  auto database = Database::open(dataFolder + "/catalogue.sqlite");
  if (!database) return database.failure();
  if (auto failure = prepareCatalogue(**database)) return *failure;
  return Catalogue(std::move(*database));
}

Result<DownloadID> Catalogue::add(DownloadRecord record) {
  auto insert = _database->prepare(
      "INSERT INTO downloads (state, reason, source_path, device_path, asset_url, artwork, artwork_kind, "
      "metadata, bytes, library_path, added) VALUES ('queued', '', ?, ?, ?, ?, ?, ?, 0, '', ?)");
  insert.bind(record.sourcePath).bind(record.devicePath).bind(record.assetURL).bind(record.artwork);
  insert.bind(static_cast<int64_t>(record.artworkKind))
      .bind(record.metadata.json())
      .bind(milliseconds(now()));
  if (auto failure = insert.run()) return *failure;
  return _database->lastInsertedRow();
}

Result<std::optional<DownloadRecord>> Catalogue::download(DownloadID id) {
  auto select = _database->prepare(std::string(selectDownloads) + "WHERE id = ?");
  select.bind(id);
  return onlyOne(downloadsOf(std::move(select)));
}

Result<std::vector<DownloadRecord>> Catalogue::downloads() {
  return downloadsOf(_database->prepare(std::string(selectDownloads) + "ORDER BY id DESC"));
}

Result<std::vector<DownloadRecord>> Catalogue::latestDownloads(size_t limit) {
  auto select = _database->prepare(std::string(selectDownloads) + "ORDER BY id DESC LIMIT ?");
  select.bind(static_cast<int64_t>(limit));
  return downloadsOf(std::move(select));
}

Result<std::vector<DownloadRecord>> Catalogue::unfinishedDownloads() {
  return downloadsOf(_database->prepare(std::string(selectDownloads) +
                                        "WHERE state IN ('queued', 'fetching', 'placing') "
                                        "ORDER BY id"));
}

MaybeFailure Catalogue::transact(const std::function<MaybeFailure()>& work) {
  return _database->transact(work);
}

MaybeFailure Catalogue::update(const DownloadRecord& record) {
  auto update = _database->prepare(
      "UPDATE downloads SET state = ?, reason = ?, source_path = ?, device_path = ?, asset_url = ?, "
      "bytes = ?, library_path = ?, ended = ? WHERE id = ?");
  update.bind(nameOf(record.state)).bind(record.reason).bind(record.sourcePath).bind(record.devicePath);
  update.bind(record.assetURL).bind(static_cast<int64_t>(record.bytes)).bind(record.libraryPath);
  isFinal(record.state) ? update.bind(milliseconds(now())) : update.bindNothing();
  if (auto failure = update.bind(record.id).run()) return failure;
  return isFinal(record.state) ? forgetIntention(*_database, record.id) : std::nullopt;
}

MaybeFailure Catalogue::intend(const DownloadRecord& record, const SongRecord& song) {
  const auto failure = _database->transact([&]() -> MaybeFailure {
    if (auto problem = forgetIntention(*_database, record.id)) return problem;
    if (auto problem = insertSong(*_database, song, std::nullopt)) return problem;
    return update(record);
  });
  return failure ? failure : _database->flush();
}

Result<std::optional<SongRecord>> Catalogue::intention(DownloadID id) {
  auto select = _database->prepare(std::string(selectSongs) + "WHERE download = ? AND filed IS NULL");
  select.bind(id);
  return onlyOne(songsOf(std::move(select)));
}

MaybeFailure Catalogue::file(const DownloadRecord& record, const SongRecord& song) {
  return _database->transact([&]() -> MaybeFailure {
    if (auto problem = forgetIntention(*_database, record.id)) return problem;
    // Whatever had this path before is gone: a new song got the name.
    auto displace = _database->prepare("DELETE FROM songs WHERE path = ? AND filed IS NOT NULL");
    if (auto problem = displace.bind(song.path).run()) return problem;
    if (auto problem = insertSong(*_database, song, now())) return problem;
    return update(record);
  });
}

Result<bool> Catalogue::needsArtwork(const std::string& artwork) {
  auto select = _database->prepare(
      "SELECT 1 FROM downloads WHERE artwork = ? AND state NOT IN ('filed', 'duplicate') LIMIT 1");
  const bool found = select.bind(artwork).step();
  if (auto failure = select.failure()) return *failure;
  return found;
}

Result<std::vector<SongRecord>> Catalogue::songs() {
  return songsOf(_database->prepare(std::string(selectSongs) + "WHERE filed IS NOT NULL ORDER BY id DESC"));
}

Result<std::vector<SongRecord>> Catalogue::songsBefore(int64_t id, size_t limit) {
  auto select = _database->prepare(std::string(selectSongs) +
                                   "WHERE filed IS NOT NULL AND id < ? ORDER BY id DESC LIMIT ?");
  select.bind(id).bind(static_cast<int64_t>(limit));
  return songsOf(std::move(select));
}

Result<std::optional<SongRecord>> Catalogue::song(int64_t id) {
  auto select = _database->prepare(std::string(selectSongs) + "WHERE id = ? AND filed IS NOT NULL");
  select.bind(id);
  return onlyOne(songsOf(std::move(select)));
}

Result<std::optional<SongRecord>> Catalogue::songOfDownload(DownloadID id) {
  auto select = _database->prepare(std::string(selectSongs) + "WHERE download = ? AND filed IS NOT NULL");
  select.bind(id);
  return onlyOne(songsOf(std::move(select)));
}

Result<std::vector<SongRecord>> Catalogue::songsWithAudio(const ContentHash& audio) {
  auto select =
      _database->prepare(std::string(selectSongs) + "WHERE audio = ? AND filed IS NOT NULL ORDER BY id");
  select.bind(audio.hex());
  return songsOf(std::move(select));
}

}  // namespace quaverly::library
