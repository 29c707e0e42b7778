#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

#include "Host/Library/CatalogueRecords.h"
#include "Host/Library/Database.h"
#include "Host/Library/Result.h"
#include "Platform/Device/Clock.h"

namespace quaverly::library {

/// The beginnings of queries whose rows `downloadsOf` and `songsOf` read.
constexpr const char* selectDownloads =
    "SELECT id, state, reason, source_path, device_path, asset_url, artwork, artwork_kind, metadata, bytes, "
    "library_path, added, ended FROM downloads ";
constexpr const char* selectSongs =
    "SELECT download, path, title, artist, album, track_number, year, audio, cover, size, filed, id FROM "
    "songs ";

/// How the catalogue keeps a date: since 1970.
int64_t milliseconds(Clock::Date date);
/// As exact as it is kept.
Clock::Date now();

/// All rows; one that cannot be made sense of counts as damage.
Result<std::vector<DownloadRecord>> downloadsOf(Statement statement);
Result<std::vector<SongRecord>> songsOf(Statement statement);

/// `filed` is absent for a song that is only intended.
MaybeFailure insertSong(Database& database, const SongRecord& song, std::optional<Clock::Date> filed);

}  // namespace quaverly::library
