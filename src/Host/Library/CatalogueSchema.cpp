#include "Host/Library/CatalogueSchema.h"

#include <string>

namespace quaverly::library {
namespace {

constexpr int64_t schemaVersion = 1;

/// A song without a time of filing is one that is about to get its name. Times are milliseconds since 1970,
/// paths are bytes, `audio` is a hash in hexadecimal digits, and `artwork_kind` is 0 to keep the file's own
/// pictures, 1 to remove them and 2 to replace them.
constexpr const char* tables = R"(
  CREATE TABLE downloads (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    state TEXT NOT NULL,
    reason TEXT NOT NULL,
    source_path TEXT NOT NULL,
    device_path TEXT NOT NULL,
    asset_url TEXT NOT NULL,
    artwork TEXT NOT NULL,
    artwork_kind INTEGER NOT NULL,
    metadata TEXT NOT NULL,
    bytes INTEGER NOT NULL,
    library_path TEXT NOT NULL,
    added INTEGER NOT NULL,
    ended INTEGER
  );
  CREATE INDEX downloads_by_state ON downloads (state);
  CREATE INDEX downloads_by_artwork ON downloads (artwork);
  CREATE TABLE songs (
    id INTEGER PRIMARY KEY,
    download INTEGER NOT NULL,
    path TEXT NOT NULL,
    title TEXT,
    artist TEXT,
    album TEXT,
    track_number INTEGER NOT NULL,
    year INTEGER NOT NULL,
    audio TEXT NOT NULL,
    cover TEXT NOT NULL,
    size INTEGER NOT NULL,
    filed INTEGER
  );
  CREATE INDEX songs_by_audio ON songs (audio);
  CREATE INDEX songs_by_path ON songs (path);
  CREATE INDEX songs_by_download ON songs (download);
)";

Result<int64_t> versionOf(Database& database) {
  auto select = database.prepare("PRAGMA user_version");
  const bool found = select.step();
  if (auto failure = select.failure()) return *failure;
  return found ? select.number(0) : 0;
}

/// Looks again under the lock: another program may be making the same tables.
MaybeFailure makeTables(Database& database) {
  return database.transact([&]() -> MaybeFailure {
    const auto version = versionOf(database);
    if (!version) return version.failure();
    if (*version != 0) return std::nullopt;
    if (auto failure = database.run(tables)) return failure;
    return database.run("PRAGMA user_version = " + std::to_string(schemaVersion));
  });
}

/// Reads something of every table, so that damage and a foreign database show at once.
MaybeFailure probeTables(Database& database) {
  for (const auto* sql : {"SELECT id, state, artwork_kind FROM downloads ORDER BY id DESC LIMIT 1",
                          "SELECT id, download, filed FROM songs ORDER BY id DESC LIMIT 1"}) {
    if (auto failure = database.prepare(sql).run()) return failure;
  }
  return std::nullopt;
}

}  // namespace

MaybeFailure prepareCatalogue(Database& database) {
  // With a write-ahead log a commit is one append, readers never wait, and what must be
  // safe is flushed by itself.
  if (auto failure = database.runPatiently("PRAGMA journal_mode = WAL")) return failure;
  if (auto failure = database.run("PRAGMA synchronous = NORMAL")) return failure;
  const auto version = versionOf(database);
  if (!version) return version.failure();
  if (*version > schemaVersion) {
    return Failure{"The catalogue was written by a newer version of Quaverly. Use that version."};
  }
  if (*version == 0) {
    if (auto failure = makeTables(database)) return failure;
  }
  return probeTables(database);
}

}  // namespace quaverly::library
