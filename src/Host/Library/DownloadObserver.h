#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "Host/Library/CatalogueRecords.h"

namespace quaverly::library {

/// How far a fetch is.
struct DownloadProgress {
  uint64_t bytes = 0;
  uint64_t total = 0;  ///< 0 while it is not known
  double bytesPerSecond = 0;
};

/// Hears what becomes of downloads. Everything is told on the main thread, and never from inside a call to
/// the service.
class DownloadObserver {
 public:
  virtual ~DownloadObserver() = default;

  /// A download was added, or one of an earlier run goes on.
  virtual void downloadAdded(const DownloadRecord&) {}
  virtual void downloadStarted(const DownloadRecord&) {}
  /// A few times a second.
  virtual void downloadProgressed(DownloadID, const DownloadProgress&) {}
  /// Filed, duplicate or failed. The number is 0 when not even the catalogue could take the download.
  virtual void downloadEnded(const DownloadRecord&) {}
  /// The service cannot go on yet; `why` is a sentence for people. Told once per wait.
  virtual void serviceWaits(const std::string& why) { (void)why; }
  /// Every download has ended.
  virtual void serviceBecameIdle() {}
  /// After `stop`: no more will happen. What is not done is still in the catalogue and resumes another time.
  virtual void serviceStopped(const std::vector<DownloadRecord>& notDone) { (void)notDone; }
};

}  // namespace quaverly::library
