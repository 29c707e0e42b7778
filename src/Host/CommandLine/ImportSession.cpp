#include "Host/CommandLine/ImportSession.h"

#include <utility>

#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::commandline {
namespace {

using library::DownloadRecord;
using Place = library::ImportService::Place;

/// How many songs may wait in the service: enough that it never waits for the reader, few enough that an
/// interruption leaves little behind.
constexpr size_t songsAhead = 4;

}  // namespace

ImportSession::ImportSession(std::vector<std::string> files, SongHandOver& handOver,
                             library::ImportService& service, ImportReport& report)
    : _files(std::make_move_iterator(files.begin()), std::make_move_iterator(files.end())),
      _handOver(handOver),
      _service(service),
      _report(report) {
  _service.addObserver(this);
}

ImportSession::~ImportSession() {
  _service.removeObserver(this);
}

void ImportSession::run() {
  _service.resumeInterrupted();
  handOverSoon();
  NSRunLoop::mainRunLoop().run();
}

void ImportSession::interrupt() {
  _interrupted = true;
  if (!mayHandOver() || _files.empty()) _service.stop();
}

bool ImportSession::mayHandOver() const {
  if (_service.place() == Place::elsewhere) return true;
  return !_interrupted && _pending.size() < songsAhead;
}

// A file a turn, so that the server gets its turns in between.
void ImportSession::handOverSoon() {
  if (_handOverIsPosted) return;
  _handOverIsPosted = true;
  NSRunLoop::mainRunLoop().performBlock([this] {
    _handOverIsPosted = false;
    handOverNext();
  });
}

void ImportSession::handOverNext() {
  if (!mayHandOver()) return;
  if (_files.empty()) return _interrupted ? _service.stop() : finishWhenDone();
  const std::string file = std::move(_files.front());
  _files.pop_front();
  const auto before = _service.latestDownload();
  if (const auto failure = _handOver.handOver(file)) {
    _report.refused(file, failure->reason);
  } else if (const auto id = _service.latestDownload(); id != before) {
    _pending.emplace(id, file);
  }
  handOverSoon();
}

void ImportSession::finishWhenDone() {
  if (_files.empty() && _pending.empty() && _service.isIdle()) NSRunLoop::mainRunLoop().stop();
}

std::string ImportSession::nameOf(const DownloadRecord& record) const {
  const auto found = _pending.find(record.id);
  return found == _pending.end() ? record.sourcePath : found->second;
}

// Also what an earlier run left unfinished: it is waited for like the files of this one.
void ImportSession::downloadAdded(const DownloadRecord& record) {
  _pending.emplace(record.id, record.sourcePath);
}

void ImportSession::downloadStarted(const DownloadRecord& record) {
  _report.started(nameOf(record));
}

void ImportSession::downloadProgressed(library::DownloadID id, const library::DownloadProgress& progress) {
  const auto found = _pending.find(id);
  if (found != _pending.end()) _report.progressed(found->second, progress);
}

void ImportSession::downloadEnded(const DownloadRecord& record) {
  _report.ended(nameOf(record), record);
  _pending.erase(record.id);
  handOverSoon();
}

void ImportSession::serviceWaits(const std::string& why) {
  _report.waits(why);
}

void ImportSession::serviceBecameIdle() {
  handOverSoon();
}

void ImportSession::serviceStopped(const std::vector<DownloadRecord>& notDone) {
  const auto rest = _interrupted && _service.place() == Place::elsewhere ? ImportReport::Rest::goesOn
                                                                         : ImportReport::Rest::resumes;
  for (const auto& record : notDone) _report.leftOver(nameOf(record), rest);
  for (const auto& file : _files) _report.leftOver(file, ImportReport::Rest::untouched);
  NSRunLoop::mainRunLoop().stop();
}

}  // namespace quaverly::commandline
