#include "Host/Library/CatalogueRows.h"

#include <charconv>

namespace quaverly::library {
namespace {

Clock::Date dateOf(int64_t milliseconds) {
  return Clock::Date(std::chrono::milliseconds(milliseconds));
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

}  // namespace

int64_t milliseconds(Clock::Date date) {
  return std::chrono::floor<std::chrono::milliseconds>(date).time_since_epoch().count();
}

Clock::Date now() {
  return dateOf(milliseconds(std::chrono::system_clock::now()));
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

MaybeFailure insertSong(Database& database, const SongRecord& song, std::optional<Clock::Date> filed) {
  auto insert = database.prepare(
      "INSERT INTO songs (download, path, title, artist, album, track_number, year, audio, cover, "
      "size, filed) VALUES (?,?,?,?,?,?,?,?,?,?,?)");
  insert.bind(song.download).bind(song.path);
  for (const auto* text : {&song.tags.title, &song.tags.artist, &song.tags.album}) bindText(insert, *text);
  insert.bind(int64_t{song.tags.trackNumber}).bind(int64_t{song.tags.year}).bind(song.audio.hex());
  insert.bind(song.cover).bind(static_cast<int64_t>(song.size));
  filed ? insert.bind(milliseconds(*filed)) : insert.bindNothing();
  return insert.run();
}

}  // namespace quaverly::library
