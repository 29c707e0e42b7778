#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Host/Library/ArtworkStore.h"
#include "Host/Library/Catalogue.h"
#include "Host/Library/DataLock.h"
#include "Host/Library/DownloadDesk.h"
#include "Host/Library/DownloadObserver.h"
#include "Host/Library/DownloadWorker.h"
#include "Host/Library/LibrarySettings.h"
#include "Host/Library/OutsideFiles.h"
#include "Host/Library/Result.h"
#include "Host/Library/SongServer.h"
#include "Platform/StoreServices/SSDownload.h"

namespace quaverly::library {

/// The service's side on the main thread: what is under way, what lives as long as it, and who hears of it.
class ActiveDownloads : public DownloadDesk, public std::enable_shared_from_this<ActiveDownloads> {
 public:
  ActiveDownloads(const LibrarySettings& settings, Catalogue catalogue, OutsideFiles& outsideFiles,
                  SongServer& server);

  /// Once, when a shared pointer holds this object.
  void startWorker(const LibrarySettings& settings, std::optional<DataLock> turn);
  /// Stops, waits for the worker, completes what is left. Observers hear nothing more.
  void close();

  void add(const Ref<SSDownload>& download);
  void resume();
  MaybeFailure retry(DownloadID id);
  MaybeFailure take(DownloadID id);
  void stop();

  bool isIdle() const { return _active.empty() && _refused == 0 && !_resumeWanted; }
  DownloadID latest() const { return _latest; }
  Catalogue& catalogue() { return _catalogue; }
  void addObserver(DownloadObserver* observer) { _observers.push_back(observer); }
  void removeObserver(DownloadObserver* observer) { std::erase(_observers, observer); }

  // From the worker.
  SongServer::Readiness makeServerReady() override { return _server.makeReady(); }
  void gotTurn() override;
  void waits(const std::string& why) override;
  void started(const DownloadRecord& record) override;
  void progressed(DownloadID id, const DownloadProgress& progress) override;
  void ended(const DownloadRecord& record) override;
  void workerEnded() override;

 private:
  struct Active {
    Ref<SSDownload> download;  // null for one of an earlier run
    std::shared_ptr<const OutsideFile> outsideFile;
  };

  void begin(const DownloadRecord& record, Active active);
  void refuse(const Ref<SSDownload>& download, DownloadRecord record, const Failure& failure);
  void resumeIfPossible();
  std::vector<DownloadRecord> notDone();
  void completeAll();
  void tell(const std::function<void(DownloadObserver&)>& event);
  void tellIfIdle();
  void later(std::function<void(ActiveDownloads&)> block);

  Catalogue _catalogue;
  ArtworkStore _artwork;
  OutsideFiles& _outsideFiles;
  SongServer& _server;
  std::vector<DownloadObserver*> _observers;
  std::map<DownloadID, Active> _active;
  size_t _refused = 0;  // and nobody has heard of it yet
  DownloadID _latest = 0;
  bool _hasTurn = false;
  bool _resumeWanted = false;
  bool _stopping = false;
  std::unique_ptr<DownloadWorker> _worker;
};

}  // namespace quaverly::library
