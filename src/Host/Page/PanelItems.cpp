#include "Host/Page/PanelItems.h"

#include <nlohmann/json.hpp>

#include "Host/Environment/HostWords.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::page {
namespace {

using library::DownloadState;
using Json = nlohmann::ordered_json;

uint64_t bytesDone(const library::DownloadRecord& record, const library::DownloadProgress& progress) {
  switch (record.state) {
    case DownloadState::queued:
    case DownloadState::fetching:
    case DownloadState::failed:
      return progress.bytes;
    case DownloadState::placing:
    case DownloadState::filed:
    case DownloadState::duplicate:
      return record.bytes;
  }
  return 0;
}

std::string withoutEnding(const std::string& name) {
  return name.substr(0, name.rfind('.'));
}

std::string belowLibrary(const std::string& path, const std::string& libraryFolder) {
  const std::string start = libraryFolder + "/";
  return path.starts_with(start) ? path.substr(start.size()) : path;
}

}  // namespace

Json downloadItem(const library::DownloadRecord& record, const library::DownloadProgress& progress) {
  const std::string name = NSStringLastPathComponent(record.sourcePath);
  Json item;
  item["id"] = record.id;
  item["file"] = name;
  item["title"] = record.metadata.title.value_or("").empty() ? withoutEnding(name) : *record.metadata.title;
  if (record.metadata.artistName) item["artist"] = *record.metadata.artistName;
  item["state"] = nameOf(record.state);
  item["bytes"] = bytesDone(record, progress);
  item["total"] = record.bytes > 0 ? record.bytes : progress.total;
  if (!record.reason.empty()) item["reason"] = host::inUsersLanguage(record.reason);
  item["canRetry"] = record.state == DownloadState::failed;
  return item;
}

Json songItem(const library::SongRecord& song, const std::string& libraryFolder) {
  Json item;
  item["id"] = song.id;
  item["title"] = song.tags.title.value_or(withoutEnding(NSStringLastPathComponent(song.path)));
  if (song.tags.artist) item["artist"] = *song.tags.artist;
  if (song.tags.album) item["album"] = *song.tags.album;
  if (song.tags.trackNumber) item["track"] = song.tags.trackNumber;
  if (song.tags.year) item["year"] = song.tags.year;
  item["path"] = belowLibrary(song.path, libraryFolder);
  item["hasCover"] = !song.cover.empty();
  return item;
}

}  // namespace quaverly::page
