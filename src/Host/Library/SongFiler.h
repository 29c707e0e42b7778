#pragma once

#include <functional>
#include <stop_token>

#include "Host/Library/ArtworkStore.h"
#include "Host/Library/Catalogue.h"
#include "Host/Library/Fetch.h"
#include "Host/Library/FilingPlan.h"
#include "Host/Library/LibrarySettings.h"
#include "Host/Library/PartFile.h"
#include "Host/Library/SongReceiver.h"

namespace quaverly::library {

/// Files songs into the library, one at a time: measures the source, fetches it into a part file, checks what
/// was stored, and gives it its name. Whatever happens, and whenever the program or the machine stops, the
/// library holds the whole song or nothing of it. Blocks; a worker's.
class SongFiler {
 public:
  /// Catalogue and artwork must outlive the filer. `beforeFetch` is called right before each fetch; its
  /// failure is the download's.
  SongFiler(const LibrarySettings& settings, Catalogue& catalogue, const ArtworkStore& artwork,
            const FetchLimits& limits, std::function<MaybeFailure()> beforeFetch);

  /// Takes a download to a final state, in the record and in the catalogue. When `stop` is asked for before
  /// the song is whole, the record is `queued` again.
  void file(DownloadRecord& record, const SongReceiver::OnProgress& onProgress, const std::stop_token& stop);

 private:
  MaybeFailure tryFile(DownloadRecord& record, const SongReceiver::OnProgress& onProgress,
                       const std::stop_token& stop);
  Result<PartFile> fetched(const DownloadRecord& record, const SongOffer& offer,
                           const SongReceiver::OnProgress& onProgress, const std::stop_token& stop) const;
  MaybeFailure place(PartFile& part, const SongOffer& offer, FilingPlan plan, DownloadRecord& record);
  Result<PartFile::Placing> placeAs(const FilingPlan& plan, const SongOffer& offer, PartFile& part,
                                    DownloadRecord& record);

  LibrarySettings _settings;
  Catalogue& _catalogue;
  const ArtworkStore& _artwork;
  FilingPlanner _planner;
  FetchLimits _limits;
  std::function<MaybeFailure()> _beforeFetch;
};

}  // namespace quaverly::library
