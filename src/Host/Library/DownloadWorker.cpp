#include "Host/Library/DownloadWorker.h"

#include <chrono>
#include <utility>
#include <variant>

#include "Host/Library/DownloadTaking.h"
#include "Host/Library/MainThread.h"
#include "Host/Library/Settling.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::library {
namespace {

/// How often a turn or a port that somebody else has is asked for again.
constexpr std::chrono::milliseconds pauseLength{100};

bool leadsTo(const std::string& devicePath, const std::string& hostPath) {
  const auto location = Device::current().mounts.resolve(devicePath);
  return location && location->hostPath == hostPath;
}

/// Makes sure that the record's device path leads to its source, mounting the file where it does not: mounts
/// change from one run to the next. The path leads there while the result lives.
Result<std::shared_ptr<const OutsideFile>> madeReachable(DownloadRecord& record, OutsideFiles& outsideFiles) {
  // Another download's mount may lead there; it stays for as long as either needs it.
  auto mounted = outsideFiles.mounted(record.devicePath);
  if (record.sourcePath.empty() || leadsTo(record.devicePath, record.sourcePath)) return mounted;
  auto file = outsideFiles.mount(record.sourcePath);
  if (!file) return file;
  record.devicePath = (*file)->devicePath();
  record.assetURL = withDevicePath(record.assetURL, record.devicePath);
  return file;
}

DownloadRecord failed(DownloadRecord record, const Failure& failure) {
  record.state = DownloadState::failed;
  record.reason = failure.reason;
  return record;
}

DownloadRecord failed(DownloadID id, const Failure& failure) {
  DownloadRecord record;
  record.id = id;
  return failed(std::move(record), failure);
}

}  // namespace

DownloadWorker::DownloadWorker(LibrarySettings settings, OutsideFiles& outsideFiles,
                               std::weak_ptr<DownloadDesk> desk, std::optional<DataLock> turn)
    : _settings(std::move(settings)),
      _outsideFiles(outsideFiles),
      _desk(std::move(desk)),
      _artwork(_settings.dataFolder),
      _turn(std::move(turn)),
      _thread([this](const std::stop_token& stop) { run(stop); }) {}

DownloadWorker::~DownloadWorker() = default;

void DownloadWorker::enqueue(DownloadID id) {
  std::lock_guard lock(_mutex);
  _queue.push_back(id);
  _changed.notify_all();
}

void DownloadWorker::takeTurn() {
  std::lock_guard lock(_mutex);
  _turnWanted = true;
  _changed.notify_all();
}

void DownloadWorker::run(const std::stop_token& stop) {
  auto catalogue = Catalogue::open(_settings.dataFolder);
  auto placing = Catalogue::open(_settings.dataFolder);
  catalogue&& placing ? runWith(*catalogue, *placing, stop)
                      : refuseAll((catalogue ? placing : catalogue).failure(), stop);
  tell([](DownloadDesk& desk) { desk.workerEnded(); });
}

void DownloadWorker::runWith(Catalogue& catalogue, Catalogue& placing, const std::stop_token& stop) {
  SongFiler filer({_settings, catalogue, placing, _artwork}, {},
                  [this, &stop] { return waitForServer(stop); });
  bool hasBegun = false;
  while (!stop.stop_requested()) {
    const auto id = next(stop);
    if (!hasBegun) hasBegun = begin(catalogue, stop);
    if (id && !stop.stop_requested()) work(*id, catalogue, filer, stop);
  }
  filer.finish();
  if (_turn) PartFile::removeAbandoned(_settings.libraryFolder);
}

void DownloadWorker::refuseAll(const Failure& failure, const std::stop_token& stop) {
  tell([](DownloadDesk& desk) { desk.gotTurn(); });
  while (!stop.stop_requested()) {
    if (const auto id = next(stop)) {
      tell([record = failed(*id, failure)](DownloadDesk& desk) { desk.ended(record); });
    }
  }
}

std::optional<DownloadID> DownloadWorker::next(const std::stop_token& stop) {
  std::unique_lock lock(_mutex);
  _changed.wait(lock, stop, [this] { return !_queue.empty() || _turnWanted; });
  _turnWanted = false;
  if (_queue.empty() || stop.stop_requested()) return std::nullopt;
  const DownloadID id = _queue.front();
  _queue.pop_front();
  return id;
}

// False when it is time to stop.
bool DownloadWorker::begin(Catalogue& catalogue, const std::stop_token& stop) {
  waitForTurn(stop);
  if (!_turn) return false;
  if (const auto failure = settleAfterCrash(_settings.libraryFolder, catalogue, _artwork))
    NSLog(failure->reason);
  tell([](DownloadDesk& desk) { desk.gotTurn(); });
  return true;
}

void DownloadWorker::waitForTurn(const std::stop_token& stop) {
  bool told = false;
  while (!_turn && !stop.stop_requested()) {
    auto turn = DataLock::tryTake(_settings.dataFolder);
    if (!turn) NSLog(turn.failure().reason);
    if (turn && *turn) {
      _turn = std::move(*turn);
      return;
    }
    if (!std::exchange(told, true)) tell([](DownloadDesk& desk) { desk.waits(anotherHasTheTurn); });
    pause(stop);
  }
}

void DownloadWorker::work(DownloadID id, Catalogue& catalogue, SongFiler& filer,
                          const std::stop_token& stop) {
  auto found = catalogue.download(id);
  if (!found || !*found) {
    const auto failure = found ? Failure{"The catalogue has lost the download."} : found.failure();
    return tell([record = failed(id, failure)](DownloadDesk& desk) { desk.ended(record); });
  }
  auto& record = **found;
  const auto tellEnd = [this](const DownloadRecord& ended) {
    tell([ended](DownloadDesk& desk) { desk.ended(ended); });
  };
  // While this program waited for its turn, another one may have resumed and ended the download.
  if (isFinal(record.state)) return tellEnd(record);
  const auto reachable = madeReachable(record, _outsideFiles);
  tell([record](DownloadDesk& desk) { desk.started(record); });
  const auto tellProgress = [this, id](const DownloadProgress& progress) {
    tell([id, progress](DownloadDesk& desk) { desk.progressed(id, progress); });
  };
  filer.file(record, tellProgress, stop, tellEnd);
}

MaybeFailure DownloadWorker::waitForServer(const std::stop_token& stop) {
  bool told = false;
  while (!stop.stop_requested()) {
    const auto readiness = askMainThread<SongServer::Readiness>(
        [desk = _desk]() -> SongServer::Readiness {
          const auto living = desk.lock();
          return living ? living->makeServerReady() : Failure{"The program ends."};
        },
        stop);
    if (!readiness) break;
    if (std::holds_alternative<SongServer::Running>(*readiness)) return std::nullopt;
    if (const auto* failure = std::get_if<Failure>(&*readiness)) return *failure;
    if (!std::exchange(told, true)) {
      tell([why = std::get<SongServer::Wait>(*readiness).why](DownloadDesk& desk) { desk.waits(why); });
    }
    pause(stop);
  }
  return Failure{"The import was stopped."};
}

void DownloadWorker::pause(const std::stop_token& stop) {
  std::unique_lock lock(_mutex);
  _changed.wait_for(lock, stop, pauseLength, [] { return false; });
}

void DownloadWorker::tell(std::function<void(DownloadDesk&)> event) const {
  NSRunLoop::mainRunLoop().performBlock([desk = _desk, event = std::move(event)] {
    if (const auto living = desk.lock()) event(*living);
  });
}

}  // namespace quaverly::library
