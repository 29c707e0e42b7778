#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "Host/Library/Catalogue.h"
#include "Host/Library/DataLock.h"
#include "Host/Library/DownloadObserver.h"
#include "Host/Library/ImportService.h"
#include "Host/Library/LibrarySettings.h"
#include "Host/Library/OutsideFiles.h"
#include "Host/Library/Result.h"
#include "Host/Library/SongServer.h"

namespace quaverly::library {

class ActiveDownloads;

/// Stands behind the platform's music download manager: writes each download into the catalogue, fetches one
/// after the other over HTTP on a worker thread, and files the songs into the library. Main thread, whose
/// loop must run for anything to go on.
///
/// Of two services on one data folder, in whatever programs, one works and the other waits until the first is
/// gone. The completion block of every download runs on the main thread once the download has ended, or when
/// the service stops.
class DownloadService : public ImportService {
 public:
  /// Makes the data folder where it is missing. Fails when the catalogue cannot be used. `outsideFiles` and
  /// `server` must outlive the service. Without a turn to file it takes one itself, when there is work.
  static Result<std::unique_ptr<DownloadService>> open(LibrarySettings settings, OutsideFiles& outsideFiles,
                                                       SongServer& server,
                                                       std::optional<DataLock> turn = std::nullopt);
  /// Stops, and waits for the current step to end. Observers hear nothing more.
  ~DownloadService() override;

  /// An outside file that a download names stays mounted as long as the download lives.
  void addDownloads(const std::vector<Ref<SSDownload>>& downloads) override;

  Place place() const override { return Place::here; }
  DownloadID latestDownload() const override;
  void resumeInterrupted() override;
  /// Tries a failed download again, as it was added.
  MaybeFailure retry(DownloadID id);
  /// Goes on with a download that another program has written into the catalogue. Does nothing when it is
  /// under way already, or has ended.
  MaybeFailure take(DownloadID id);

  /// Ends after the current step: a fetch is given up, a song that is whole is filed. Returns at once;
  /// `serviceStopped` tells the rest. Whatever is added afterwards is only written into the catalogue.
  void stop() override;

  bool isIdle() const override;
  void addObserver(DownloadObserver* observer) override;
  void removeObserver(DownloadObserver* observer) override;

  /// The main thread's catalogue, for listings.
  Catalogue& catalogue();

 private:
  explicit DownloadService(std::shared_ptr<ActiveDownloads> active);

  std::shared_ptr<ActiveDownloads> _active;
};

}  // namespace quaverly::library
