#pragma once

#include "Host/Library/CatalogueRecords.h"
#include "Host/Library/DownloadObserver.h"
#include "Platform/StoreServices/SSDownloadManager.h"

namespace quaverly::library {

/// What stands behind the download manager, as an import sees it: this program's own service, or the one of
/// another program that serves on the same data folder. Main thread.
class ImportService : public SSDownloadService {
 public:
  enum class Place { here, elsewhere };
  /// Where the work is done: elsewhere it goes on after `stop`.
  virtual Place place() const = 0;

  /// The download that was added last; 0 before the first.
  virtual DownloadID latestDownload() const = 0;
  /// Goes on with what earlier runs left unfinished; observers hear of each as added.
  virtual void resumeInterrupted() = 0;
  /// Ends after the current step. Returns at once; `serviceStopped` tells the rest.
  virtual void stop() = 0;
  /// Whether nothing is waiting or under way.
  virtual bool isIdle() const = 0;

  /// Unowned; an observer takes itself out before it goes.
  virtual void addObserver(DownloadObserver* observer) = 0;
  virtual void removeObserver(DownloadObserver* observer) = 0;
};

}  // namespace quaverly::library
