#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Host/Library/DownloadService.h"
#include "Host/Library/FilingPlan.h"

namespace quaverly::library {

/// Stands behind the download manager in place of the service and tells what an import would do: the plans
/// are those of the import itself, and nothing is fetched or written into the library.
class DryRun : public SSDownloadService {
 public:
  /// What would become of one download.
  struct Outcome {
    DownloadRecord
        record;  ///< with a number of 0; planned: state `queued`, otherwise `duplicate` or `failed`
    std::optional<FilingPlan> plan;  ///< absent when it would fail
  };

  static Result<std::unique_ptr<DryRun>> open(const LibrarySettings& settings);

  /// Plans at once. Completes the downloads in a later turn of the main loop.
  void addDownloads(const std::vector<Ref<SSDownload>>& downloads) override;

  /// In the order of adding.
  const std::vector<Outcome>& outcomes() const { return _outcomes; }

 private:
  DryRun(LibrarySettings settings, Catalogue catalogue);

  LibrarySettings _settings;
  Catalogue _catalogue;
  FilingPlanner _planner;
  std::vector<Outcome> _outcomes;
};

}  // namespace quaverly::library
