#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Host/Library/Catalogue.h"
#include "Host/Library/FilingPlan.h"
#include "Host/Library/LibrarySettings.h"
#include "Host/Library/Result.h"
#include "Platform/StoreServices/SSDownloadManager.h"

namespace quaverly::library {

/// Stands behind the download manager in place of the service and tells what an import would do: the plans
/// are those of the import itself, and nothing is fetched or written into the library. Main thread.
class DryRun : public SSDownloadService {
 public:
  /// What would become of one download.
  struct Outcome {
    /// Without a number; `queued` when it would be filed at its library path, else `duplicate` or `failed`.
    DownloadRecord record;
    std::optional<FilingPlan> plan;  ///< absent when it would fail
  };

  /// Fails when the catalogue cannot be used.
  static Result<std::unique_ptr<DryRun>> open(const LibrarySettings& settings);

  /// Plans at once. Completes the downloads in a later turn of the main loop.
  void addDownloads(const std::vector<Ref<SSDownload>>& downloads) override;

  /// In the order of adding.
  const std::vector<Outcome>& outcomes() const { return _outcomes; }

 private:
  DryRun(std::string libraryFolder, Catalogue catalogue);
  Outcome outcomeOf(const SSDownload& download);

  Catalogue _catalogue;
  FilingPlanner _planner;
  std::vector<Outcome> _outcomes;
};

}  // namespace quaverly::library
