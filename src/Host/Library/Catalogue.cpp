#include "Host/Library/Catalogue.h"

#include <charconv>
#include <chrono>

#include "Host/Environment/DataFolder.h"
#include "Host/Library/CatalogueSchema.h"
#include "Host/Library/Database.h"
#include "Host/Library/SystemFailure.h"

namespace quaverly::library {
namespace {

constexpr const char* downloadColumns =
    "id, state, reason, source_path, device_path, asset_url, artwork, artwork_kind, metadata, bytes, "
    "library_path, added, ended";
constexpr const char* songColumns =
    "download, path, title, artist, album, track_number, year, audio, cover, size, filed";
/// The columns above, and last the song's own number.
constexpr const char* selectSongs =
    "SELECT download, path, title, artist, album, track_number, year, audio, cover, size, filed, id FROM "
    "songs ";

int64_t milliseconds(Clock::Date date) {
  return std::chrono::floor<std::chrono::milliseconds>(date).time_since_epoch().count();
}

Clock::Date dateOf(int64_t milliseconds) {
  return Clock::Date(std::chrono::milliseconds(milliseconds));
}

Clock::Date now() {
  return dateOf(milliseconds(std::chrono::system_clock::now()));
}

void bindText(Statement& statement, const std::optional<std::string>& text) {
  text ? statement.bind(*text) : statement.bindNothing();
}

std::optional<std::string> textOrNothing(const Statement& row, int column) {
  if (row.isNothing(column)) return std::nullopt;
  return row.text(column);
}

ContentHash hashFromHex(std::string_view hex) {
  ContentHash hash;
  for (size_t i = 0; i < hash.bytes.size() && 2 * i + 2 <= hex.size(); ++i) {
    std::from_chars(hex.data() + 2 * i, hex.data() + 2 * i + 2, hash.bytes[i], 16);
  }
  return hash;
}

/// A row that cannot be made sense of counts as damage.
Result<DownloadRecord> downloadOf(const Statement& row) {
  DownloadRecord record;
  record.id = row.number(0);
  const auto state = downloadStateNamed(row.text(1));
  auto metadata = DownloadMetadata::fromJSON(row.text(8));
  if (!state || !metadata) return Failure{"What the catalogue says about a download is damaged."};
  record.state = *state;
  record.reason = row.text(2);
  record.sourcePath = row.text(3);
  record.devicePath = row.text(4);
  record.assetURL = row.text(5);
  record.artwork = row.text(6);
  record.artworkKind = static_cast<ArtworkChange::Kind>(row.number(7));
  record.metadata = std::move(*metadata);
  record.bytes = static_cast<uint64_t>(row.number(9));
  record.libraryPath = row.text(10);
  record.added = dateOf(row.number(11));
  if (!row.isNothing(12)) record.ended = dateOf(row.number(12));
  return record;
}

SongRecord songOf(const Statement& row) {
  SongRecord song;
  song.download = row.number(0);
  song.path = row.text(1);
  song.tags.title = textOrNothing(row, 2);
  song.tags.artist = textOrNothing(row, 3);
  song.tags.album = textOrNothing(row, 4);
  song.tags.trackNumber = static_cast<int32_t>(row.number(5));
  song.tags.year = static_cast<int32_t>(row.number(6));
  song.audio = hashFromHex(row.text(7));
  song.cover = row.text(8);
  song.size = static_cast<uint64_t>(row.number(9));
  song.filed = dateOf(row.number(10));
  song.id = row.number(11);
  return song;
}

Result<std::vector<DownloadRecord>> downloadsOf(Statement statement) {
  std::vector<DownloadRecord> records;
  while (statement.step()) {
    auto record = downloadOf(statement);
    if (!record) return record.failure();
    records.push_back(std::move(*record));
  }
  if (auto failure = statement.failure()) return *failure;
  return records;
}

Result<std::vector<SongRecord>> songsOf(Statement statement) {
  std::vector<SongRecord> songs;
  while (statement.step()) songs.push_back(songOf(statement));
  if (auto failure = statement.failure()) return *failure;
  return songs;
}

template <class Record>
Result<std::optional<Record>> onlyOne(Result<std::vector<Record>> records) {
  if (!records) return records.failure();
  if (records->empty()) return std::optional<Record>();
  return std::optional(std::move(records->front()));
}

/// `filed` is absent for a song that is only intended.
MaybeFailure insertSong(Database& database, const SongRecord& song, std::optional<Clock::Date> filed) {
  auto insert =
      database.prepare(std::string("INSERT INTO songs (") + songColumns + ") VALUES (?,?,?,?,?,?,?,?,?,?,?)");
  insert.bind(song.download).bind(song.path);
  for (const auto* text : {&song.tags.title, &song.tags.artist, &song.tags.album}) bindText(insert, *text);
  insert.bind(int64_t{song.tags.trackNumber}).bind(int64_t{song.tags.year}).bind(song.audio.hex());
  insert.bind(song.cover).bind(static_cast<int64_t>(song.size));
  filed ? insert.bind(milliseconds(*filed)) : insert.bindNothing();
  return insert.run();
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
  auto select = _database->prepare(std::string("SELECT ") + downloadColumns + " FROM downloads WHERE id = ?");
  select.bind(id);
  return onlyOne(downloadsOf(std::move(select)));
}

Result<std::vector<DownloadRecord>> Catalogue::downloads() {
  return downloadsOf(
      _database->prepare(std::string("SELECT ") + downloadColumns + " FROM downloads ORDER BY id DESC"));
}

Result<std::vector<DownloadRecord>> Catalogue::latestDownloads(size_t limit) {
  auto select = _database->prepare(std::string("SELECT ") + downloadColumns +
                                   " FROM downloads ORDER BY id DESC LIMIT ?");
  select.bind(static_cast<int64_t>(limit));
  return downloadsOf(std::move(select));
}

Result<std::vector<DownloadRecord>> Catalogue::unfinishedDownloads() {
  return downloadsOf(_database->prepare(std::string("SELECT ") + downloadColumns +
                                        " FROM downloads WHERE state IN ('queued', 'fetching', 'placing') "
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
