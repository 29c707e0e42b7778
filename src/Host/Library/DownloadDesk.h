#pragma once

#include <string>

#include "Host/Library/CatalogueRecords.h"
#include "Host/Library/DownloadObserver.h"
#include "Host/Library/SongServer.h"

namespace quaverly::library {

/// The worker's counterpart on the main thread: hears from it, and asks the server on its behalf.
class DownloadDesk {
 public:
  virtual ~DownloadDesk() = default;
  virtual SongServer::Readiness makeServerReady() = 0;
  /// The worker has the turn on the data folder, and what a crash left behind is settled.
  virtual void gotTurn() = 0;
  virtual void waits(const std::string& why) = 0;
  virtual void started(const DownloadRecord& record) = 0;
  virtual void progressed(DownloadID id, const DownloadProgress& progress) = 0;
  virtual void ended(const DownloadRecord& record) = 0;
  /// The worker does nothing more.
  virtual void workerEnded() = 0;
};

}  // namespace quaverly::library
