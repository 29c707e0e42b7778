#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

#include "Host/Library/ArtworkStore.h"
#include "Host/Library/DataLock.h"
#include "Host/Library/DownloadDesk.h"
#include "Host/Library/LibrarySettings.h"
#include "Host/Library/OutsideFiles.h"
#include "Host/Library/SongFiler.h"

namespace quaverly::library {

/// The thread that files downloads, one after the other. It works only while it has the turn on the data
/// folder, which it is given, or takes when there is work for the first time, and keeps.
class DownloadWorker {
 public:
  /// The desk hears everything on the main thread, in a later turn of its loop, as long as it lives.
  /// `outsideFiles` must outlive the worker.
  DownloadWorker(LibrarySettings settings, OutsideFiles& outsideFiles, std::weak_ptr<DownloadDesk> desk,
                 std::optional<DataLock> turn);
  /// Stops, and waits until the current step has ended.
  ~DownloadWorker();
  DownloadWorker(const DownloadWorker&) = delete;
  DownloadWorker& operator=(const DownloadWorker&) = delete;

  void enqueue(DownloadID id);
  /// Takes the turn even without work.
  void takeTurn();
  /// Ends after the current step.
  void stop() { _thread.request_stop(); }

 private:
  void run(const std::stop_token& stop);
  void runWith(Catalogue& catalogue, Catalogue& placing, const std::stop_token& stop);
  void refuseAll(const Failure& failure, const std::stop_token& stop);
  bool begin(Catalogue& catalogue, const std::stop_token& stop);
  void waitForTurn(const std::stop_token& stop);
  void work(DownloadID id, Catalogue& catalogue, SongFiler& filer, const std::stop_token& stop);
  MaybeFailure waitForServer(const std::stop_token& stop);

  /// The next download; waits for it. Nothing when it is time to stop, or only the turn is wanted.
  std::optional<DownloadID> next(const std::stop_token& stop);
  void pause(const std::stop_token& stop);
  void tell(std::function<void(DownloadDesk&)> event) const;

  LibrarySettings _settings;
  OutsideFiles& _outsideFiles;
  std::weak_ptr<DownloadDesk> _desk;
  ArtworkStore _artwork;
  std::optional<DataLock> _turn;

  std::mutex _mutex;
  std::condition_variable_any _changed;
  std::deque<DownloadID> _queue;
  bool _turnWanted = false;

  std::jthread _thread;  // last, so that it starts when everything else is there
};

}  // namespace quaverly::library
