#include "Host/Page/Panels.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "Host/Environment/HostWords.h"
#include "Host/Page/PanelItems.h"
#include "Platform/Device/Device.h"

namespace quaverly::page {
namespace {

using library::DownloadID;
using library::DownloadRecord;
using library::DownloadState;
using Json = nlohmann::ordered_json;

std::string textOf(const Json& message) {
  return message.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json problem(const char* panel, const std::string& text) {
  return {{"type", "problem"}, {"panel", panel}, {"text", host::inUsersLanguage(text)}};
}

/// The whole number of that name in a page's message; 0 when there is none.
int64_t number(const Json& message, const char* name) {
  const auto found = message.find(name);
  return found != message.end() && found->is_number_integer() ? found->get<int64_t>() : 0;
}

}  // namespace

Panels::Panels(library::DownloadService& service, std::string libraryFolder)
    : _service(service), _libraryFolder(std::move(libraryFolder)) {
  _service.addObserver(this);
}

Panels::~Panels() {
  _service.removeObserver(this);
}

void Panels::connected(PageConnection& page) {
  _pages.push_back(&page);
  Json message = {{"type", "downloads"}, {"whole", true}, {"notice", _notice}, {"items", Json::array()}};
  const auto records = _service.catalogue().latestDownloads(downloadsShown);
  if (!records) return page.send(textOf(problem("downloads", records.failure().reason)));
  for (const auto& record : *records) message["items"].push_back(itemOf(record));
  page.send(textOf(message));
  sendSongsBefore(page, std::numeric_limits<int64_t>::max(), true);
}

void Panels::disconnected(PageConnection& page) {
  std::erase(_pages, &page);
}

void Panels::received(PageConnection& page, std::string_view text) {
  // Most messages are for the screens; those are not taken apart here.
  const auto speaksOf = [&](std::string_view word) { return text.find(word) != std::string_view::npos; };
  if (!speaksOf("\"retry\"") && !speaksOf("\"more-library\"")) return;
  const auto message = Json::parse(text, nullptr, false);
  if (!message.is_object()) return;
  const auto type = message.value("type", Json());
  if (type == "retry") retry(page, number(message, "id"));
  if (type == "more-library") sendSongsBefore(page, number(message, "before"), false);
}

void Panels::retry(PageConnection& page, DownloadID id) {
  const auto failure = _service.retry(id);
  if (!failure) return change(id);
  auto message = problem("downloads", failure->reason);
  message["id"] = id;
  page.send(textOf(message));
}

void Panels::sendSongsBefore(PageConnection& page, int64_t id, bool isWhole) {
  auto songs = _service.catalogue().songsBefore(id, songsPerMessage + 1);
  if (!songs) return page.send(textOf(problem("library", songs.failure().reason)));
  const bool hasMore = songs->size() > songsPerMessage;
  if (hasMore) songs->pop_back();
  Json message = {{"type", "library"}};
  if (isWhole) message["whole"] = true;
  message["more"] = hasMore;
  message["items"] = Json::array();
  for (const auto& song : *songs) message["items"].push_back(songItem(song, _libraryFolder));
  page.send(textOf(message));
}

void Panels::downloadAdded(const DownloadRecord& record) {
  change(record.id);
}

void Panels::downloadStarted(const DownloadRecord& record) {
  _notice.clear();
  change(record.id);
}

void Panels::downloadProgressed(DownloadID id, const library::DownloadProgress& progress) {
  _progress[id] = progress;
  change(id);
}

void Panels::downloadEnded(const DownloadRecord& record) {
  _progress.erase(record.id);
  if (record.id == 0) return broadcast(problem("downloads", record.reason));
  if (record.state == DownloadState::filed) _filed.insert(record.id);
  change(record.id);
}

void Panels::serviceWaits(const std::string& why) {
  _notice = host::inUsersLanguage(why);
  broadcast({{"type", "downloads"}, {"notice", _notice}, {"items", Json::array()}});
}

void Panels::change(DownloadID id) {
  _changed.insert(id);
  if (!_gathering) _gathering = Device::current().clock->after(gathering, [this] { tellChanges(); });
}

void Panels::tellChanges() {
  _gathering.reset();
  tellChangedDownloads();
  tellNewSongs();
}

void Panels::tellChangedDownloads() {
  const auto changed = std::exchange(_changed, {});
  if (_pages.empty()) return;
  Json message = {{"type", "downloads"}, {"notice", _notice}, {"items", Json::array()}};
  for (const auto id : changed) {
    const auto record = _service.catalogue().download(id);
    if (record && *record) message["items"].push_back(itemOf(**record));
  }
  broadcast(message);
}

void Panels::tellNewSongs() {
  const auto filed = std::exchange(_filed, {});
  if (_pages.empty() || filed.empty()) return;
  Json message = {{"type", "library"}, {"items", Json::array()}};
  for (const auto id : filed) {
    const auto song = _service.catalogue().songOfDownload(id);
    if (song && *song) message["items"].push_back(songItem(**song, _libraryFolder));
  }
  broadcast(message);
}

void Panels::broadcast(const Json& message) {
  const std::string text = textOf(message);
  for (auto* page : _pages) page->send(text);
}

Json Panels::itemOf(const DownloadRecord& record) const {
  const auto progress = _progress.find(record.id);
  return downloadItem(record, progress == _progress.end() ? library::DownloadProgress{} : progress->second);
}

}  // namespace quaverly::page
