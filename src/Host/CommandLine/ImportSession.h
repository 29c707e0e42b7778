#pragma once

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Host/CommandLine/ImportReport.h"
#include "Host/CommandLine/SongHandOver.h"
#include "Host/Library/ImportService.h"

namespace quaverly::commandline {

/// One run of an import: hands the files over one by one, a few ahead of a service in this program, and lasts
/// until each has ended or somebody interrupted. All references must outlive it. Main thread.
class ImportSession : public library::DownloadObserver {
 public:
  ImportSession(std::vector<std::string> files, SongHandOver& handOver, library::ImportService& service,
                ImportReport& report);
  ~ImportSession() override;

  /// Runs the main loop until everything has ended.
  void run();
  /// Ends after the current step; where another program does the work, as soon as it has all files.
  void interrupt();

  void downloadAdded(const library::DownloadRecord& record) override;
  void downloadStarted(const library::DownloadRecord& record) override;
  void downloadProgressed(library::DownloadID id, const library::DownloadProgress& progress) override;
  void downloadEnded(const library::DownloadRecord& record) override;
  void serviceWaits(const std::string& why) override;
  void serviceBecameIdle() override;
  void serviceStopped(const std::vector<library::DownloadRecord>& notDone) override;

 private:
  void handOverSoon();
  void handOverNext();
  void finishWhenDone();
  bool mayHandOver() const;
  std::string nameOf(const library::DownloadRecord& record) const;

  std::deque<std::string> _files;                       // not handed over yet
  std::map<library::DownloadID, std::string> _pending;  // handed over, by the names that were given
  SongHandOver& _handOver;
  library::ImportService& _service;
  ImportReport& _report;
  bool _handOverIsPosted = false;
  bool _interrupted = false;
};

}  // namespace quaverly::commandline
