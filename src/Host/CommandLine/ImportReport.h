#pragma once

#include <string>

#include "Host/CommandLine/Console.h"
#include "Host/Library/DownloadObserver.h"
#include "Host/Library/DryRun.h"

namespace quaverly::commandline {

/// Tells what becomes of the files of an import: a bar while a file is fetched, a line or an object when it
/// has ended, the count at the end. The console must outlive it.
class ImportReport {
 public:
  explicit ImportReport(Console& console) : _console(console) {}

  void started(const std::string& file);
  void progressed(const std::string& file, const library::DownloadProgress& progress);
  void ended(const std::string& file, const library::DownloadRecord& record);
  void planned(const std::string& file, const library::DryRun::Outcome& outcome);
  /// A file that did not get as far as a download.
  void refused(const std::string& file, const std::string& reason);
  enum class Rest {
    untouched,  ///< nothing was done for it
    resumes,    ///< the next import goes on with it by itself
    goesOn,     ///< another program goes on with it
  };
  /// A file that an interruption left over.
  void leftOver(const std::string& file, Rest rest);
  void waits(const std::string& why);

  void summarise(const std::string& libraryFolder) const;
  bool hasFailures() const { return _failed > 0; }

 private:
  void filed(const std::string& file, const library::DownloadRecord& record);

  Console& _console;
  int _filed = 0;
  int _duplicates = 0;
  int _failed = 0;
};

}  // namespace quaverly::commandline
