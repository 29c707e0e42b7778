#include "Host/Library/ActiveDownloads.h"

#include <algorithm>
#include <utility>

#include "Host/Library/DownloadTaking.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::library {

ActiveDownloads::ActiveDownloads(const LibrarySettings& settings, Catalogue catalogue,
                                 OutsideFiles& outsideFiles, SongServer& server)
    : _catalogue(std::move(catalogue)),
      _artwork(settings.dataFolder),
      _outsideFiles(outsideFiles),
      _server(server) {}

void ActiveDownloads::startWorker(const LibrarySettings& settings, std::optional<DataLock> turn) {
  _worker = std::make_unique<DownloadWorker>(settings, _outsideFiles, weak_from_this(), std::move(turn));
}

void ActiveDownloads::close() {
  _observers.clear();
  _stopping = true;
  _worker.reset();
  completeAll();
}

void ActiveDownloads::add(const Ref<SSDownload>& download) {
  auto record = takeOver(recordOf(*download), _catalogue, _artwork);
  if (!record) return refuse(download, recordOf(*download), record.failure());
  _latest = record->id;
  begin(*record, {download, _outsideFiles.mounted(record->devicePath)});
}

void ActiveDownloads::refuse(const Ref<SSDownload>& download, DownloadRecord record, const Failure& failure) {
  ++_refused;
  record.state = DownloadState::failed;
  record.reason = failure.reason;
  later([download, record](ActiveDownloads& self) {
    --self._refused;
    self.tell([&](DownloadObserver& observer) { observer.downloadEnded(record); });
    download->complete();
    self.tellIfIdle();
  });
}

void ActiveDownloads::begin(const DownloadRecord& record, Active active) {
  _active.insert_or_assign(record.id, std::move(active));
  later([record](ActiveDownloads& self) {
    self.tell([&](DownloadObserver& observer) { observer.downloadAdded(record); });
  });
  if (!_stopping) _worker->enqueue(record.id);
}

void ActiveDownloads::resume() {
  if (_stopping) return;
  _resumeWanted = true;
  if (!_hasTurn) return _worker->takeTurn();
  later([](ActiveDownloads& self) { self.resumeIfPossible(); });
}

void ActiveDownloads::gotTurn() {
  _hasTurn = true;
  resumeIfPossible();
}

void ActiveDownloads::resumeIfPossible() {
  if (!std::exchange(_resumeWanted, false)) return;
  const auto unfinished = _catalogue.unfinishedDownloads();
  if (!unfinished) NSLog(unfinished.failure().reason);
  if (unfinished) {
    for (const auto& record : *unfinished) {
      if (!_active.contains(record.id)) begin(record, {});
    }
  }
  tellIfIdle();
}

MaybeFailure ActiveDownloads::retry(DownloadID id) {
  auto record = _catalogue.download(id);
  if (!record) return record.failure();
  if (!*record) return Failure{"There is no such download."};
  if ((*record)->state != DownloadState::failed)
    return Failure{"Only a download that failed can be tried again."};
  (*record)->state = DownloadState::queued;
  (*record)->reason.clear();
  if (auto failure = _catalogue.update(**record)) return failure;
  begin(**record, {});
  return std::nullopt;
}

MaybeFailure ActiveDownloads::take(DownloadID id) {
  const auto record = _catalogue.download(id);
  if (!record) return record.failure();
  if (!*record) return Failure{"There is no such download."};
  if (!isFinal((*record)->state) && !_active.contains(id)) begin(**record, {});
  return std::nullopt;
}

void ActiveDownloads::stop() {
  if (std::exchange(_stopping, true)) return;
  _resumeWanted = false;
  _worker->stop();
}

void ActiveDownloads::waits(const std::string& why) {
  tell([&](DownloadObserver& observer) { observer.serviceWaits(why); });
}

void ActiveDownloads::started(const DownloadRecord& record) {
  tell([&](DownloadObserver& observer) { observer.downloadStarted(record); });
}

void ActiveDownloads::progressed(DownloadID id, const DownloadProgress& progress) {
  tell([&](DownloadObserver& observer) { observer.downloadProgressed(id, progress); });
}

void ActiveDownloads::ended(const DownloadRecord& record) {
  auto active = _active.extract(record.id);
  tell([&](DownloadObserver& observer) { observer.downloadEnded(record); });
  if (active && active.mapped().download) active.mapped().download->complete();
  tellIfIdle();
}

void ActiveDownloads::workerEnded() {
  const auto records = notDone();
  completeAll();
  tell([&](DownloadObserver& observer) { observer.serviceStopped(records); });
}

std::vector<DownloadRecord> ActiveDownloads::notDone() {
  std::vector<DownloadRecord> records;
  for (const auto& [id, active] : _active) {
    auto record = _catalogue.download(id);
    if (record && *record && !isFinal((*record)->state)) records.push_back(std::move(**record));
  }
  return records;
}

void ActiveDownloads::completeAll() {
  const auto active = std::exchange(_active, {});
  for (const auto& [id, each] : active) {
    if (each.download) each.download->complete();
  }
}

void ActiveDownloads::tell(const std::function<void(DownloadObserver&)>& event) {
  // An observer may take itself out, or another one, while it is told.
  const auto observers = _observers;
  for (auto* observer : observers) {
    if (std::ranges::find(_observers, observer) != _observers.end()) event(*observer);
  }
}

void ActiveDownloads::tellIfIdle() {
  if (isIdle()) tell([](DownloadObserver& observer) { observer.serviceBecameIdle(); });
}

void ActiveDownloads::later(std::function<void(ActiveDownloads&)> block) {
  NSRunLoop::mainRunLoop().performBlock([self = weak_from_this(), block = std::move(block)] {
    if (const auto living = self.lock()) block(*living);
  });
}

}  // namespace quaverly::library
