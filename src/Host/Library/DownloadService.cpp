#include "Host/Library/DownloadService.h"

#include <utility>

#include "Host/Library/ActiveDownloads.h"

namespace quaverly::library {

DownloadService::DownloadService(std::shared_ptr<ActiveDownloads> active) : _active(std::move(active)) {}

Result<std::unique_ptr<DownloadService>> DownloadService::open(LibrarySettings settings,
                                                               OutsideFiles& outsideFiles, SongServer& server,
                                                               std::optional<DataLock> turn) {
  auto catalogue = Catalogue::open(settings.dataFolder);
  if (!catalogue) return catalogue.failure();
  auto active = std::make_shared<ActiveDownloads>(settings, std::move(*catalogue), outsideFiles, server);
  active->startWorker(settings, std::move(turn));
  return std::unique_ptr<DownloadService>(new DownloadService(std::move(active)));
}

DownloadService::~DownloadService() {
  _active->close();
}

void DownloadService::addDownloads(const std::vector<Ref<SSDownload>>& downloads) {
  for (const auto& download : downloads) {
    if (download) _active->add(download);
  }
}

DownloadID DownloadService::latestDownload() const {
  return _active->latest();
}

void DownloadService::resumeInterrupted() {
  _active->resume();
}

MaybeFailure DownloadService::retry(DownloadID id) {
  return _active->retry(id);
}

MaybeFailure DownloadService::take(DownloadID id) {
  return _active->take(id);
}

void DownloadService::stop() {
  _active->stop();
}

bool DownloadService::isIdle() const {
  return _active->isIdle();
}

void DownloadService::addObserver(DownloadObserver* observer) {
  _active->addObserver(observer);
}

void DownloadService::removeObserver(DownloadObserver* observer) {
  _active->removeObserver(observer);
}

Catalogue& DownloadService::catalogue() {
  return _active->catalogue();
}

}  // namespace quaverly::library
