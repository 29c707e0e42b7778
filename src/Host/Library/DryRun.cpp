#include "Host/Library/DryRun.h"

#include <utility>

#include "Host/Library/ArtworkStore.h"
#include "Host/Library/DownloadTaking.h"
#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::library {

DryRun::DryRun(std::string libraryFolder, Catalogue catalogue)
    : _catalogue(std::move(catalogue)), _planner(std::move(libraryFolder), _catalogue) {}

Result<std::unique_ptr<DryRun>> DryRun::open(const LibrarySettings& settings) {
  auto catalogue = Catalogue::open(settings.dataFolder);
  if (!catalogue) return catalogue.failure();
  return std::unique_ptr<DryRun>(new DryRun(settings.libraryFolder, std::move(*catalogue)));
}

void DryRun::addDownloads(const std::vector<Ref<SSDownload>>& downloads) {
  for (const auto& download : downloads) {
    if (!download) continue;
    _outcomes.push_back(outcomeOf(*download));
    NSRunLoop::mainRunLoop().performBlock([download] { download->complete(); });
  }
}

DryRun::Outcome DryRun::outcomeOf(const SSDownload& download) {
  DownloadRecord record = recordOf(download);
  const auto artwork = artworkOf(record.metadata);
  record.artworkKind = artwork.kind;
  const auto fail = [&](const Failure& failure) {
    record.state = DownloadState::failed;
    record.reason = failure.reason;
    return Outcome{record, std::nullopt};
  };
  const auto offer = offerSong(record.sourcePath, record.metadata.tags(), artwork);
  if (!offer) return fail(offer.failure());
  record.bytes = offer->file.length;
  const auto plan = _planner.plan(*offer);
  if (!plan) return fail(plan.failure());
  record.state = plan->duplicateOf ? DownloadState::duplicate : DownloadState::queued;
  record.libraryPath = plan->duplicateOf.value_or(plan->path);
  if (!plan->duplicateOf) _planner.promise(*offer, *plan);
  return {record, *plan};
}

}  // namespace quaverly::library
