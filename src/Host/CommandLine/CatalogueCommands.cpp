#include <array>
#include <chrono>
#include <nlohmann/json.hpp>

#include "Host/CommandLine/Commands.h"
#include "Host/Environment/HostWords.h"
#include "Host/Library/Catalogue.h"

namespace quaverly::commandline {
namespace {

using library::DownloadRecord;
using library::DownloadState;
using library::SongRecord;

std::string isoDate(Clock::Date date) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
  const auto day = std::chrono::floor<std::chrono::days>(seconds);
  const std::chrono::year_month_day calendar(day);
  const std::chrono::hh_mm_ss time(seconds - day);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(calendar.year()),
                static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text.data();
}

JsonObject object(const SongRecord& song) {
  JsonObject json;
  json["path"] = song.path;
  if (song.tags.title) json["title"] = *song.tags.title;
  if (song.tags.artist) json["artist"] = *song.tags.artist;
  if (song.tags.album) json["album"] = *song.tags.album;
  if (song.tags.trackNumber) json["trackNumber"] = song.tags.trackNumber;
  if (song.tags.year) json["year"] = song.tags.year;
  json["bytes"] = song.size;
  json["filed"] = isoDate(song.filed);
  return json;
}

JsonObject object(const DownloadRecord& download) {
  JsonObject json;
  json["file"] = download.sourcePath;
  json["state"] = nameOf(download.state);
  if (!download.libraryPath.empty()) json["path"] = download.libraryPath;
  json["bytes"] = download.bytes;
  if (download.state == DownloadState::failed) json["error"] = download.reason;
  json["added"] = isoDate(download.added);
  if (download.ended) json["ended"] = isoDate(*download.ended);
  return json;
}

std::string line(const SongRecord& song) {
  return isoDate(song.filed).substr(0, 10) + "  " + song.path;
}

std::string line(const DownloadRecord& download) {
  std::string text = isoDate(download.added).substr(0, 10) + "  " +
                     host::inUsersLanguage(nameOf(download.state)) + "  " + download.sourcePath;
  if (download.state == DownloadState::failed) return text + ": " + host::inUsersLanguage(download.reason);
  if (!download.libraryPath.empty()) return text + " -> " + download.libraryPath;
  return text + ": " + host::inUsersLanguage("not done; the next import goes on with it");
}

/// Prints a listing of the catalogue, an entry a line.
template <class Record>
ExitStatus list(const Console& console, const CommonOptions& common,
                library::Result<std::vector<Record>> (library::Catalogue::*listing)(),
                const char* emptiness) {
  auto catalogue = library::Catalogue::open(common.data);
  const auto records = catalogue ? ((*catalogue).*listing)() : catalogue.failure();
  if (!records) {
    console.problem("", records.failure().reason);
    return ExitStatus::failed;
  }
  for (const auto& record : *records) {
    console.object(object(record));
    console.result(line(record));
  }
  if (records->empty()) console.news(emptiness);
  return ExitStatus::done;
}

}  // namespace

ExitStatus runLibrary(const Console& console, const CommonOptions& common) {
  return list(console, common, &library::Catalogue::songs,
              "No songs yet. File some with: quaverly import FILE...");
}

ExitStatus runDownloads(const Console& console, const CommonOptions& common) {
  return list(console, common, &library::Catalogue::downloads,
              "No imports yet. Begin with: quaverly import FILE...");
}

}  // namespace quaverly::commandline
