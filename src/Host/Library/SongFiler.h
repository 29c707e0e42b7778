#pragma once

#include <functional>
#include <future>
#include <optional>
#include <stop_token>

#include "Host/Library/ArtworkStore.h"
#include "Host/Library/Catalogue.h"
#include "Host/Library/Fetch.h"
#include "Host/Library/FilingPlan.h"
#include "Host/Library/LibrarySettings.h"
#include "Host/Library/PartFile.h"
#include "Host/Library/SongPlacer.h"
#include "Host/Library/SongReceiver.h"

namespace quaverly::library {

/// Files songs into the library: measures a source, fetches it into a part file, checks what was stored, and
/// gives it its name. Whatever happens, and whenever the program or the machine stops, the library holds the
/// whole song or nothing of it. One song is fetched at a time and one is checked and placed, so that the next
/// one comes while the disk works on the last. Blocks; a worker's.
class SongFiler {
 public:
  /// What it stands on, all of which must outlive it.
  struct Ground {
    const LibrarySettings& settings;
    Catalogue& catalogue;  ///< for the worker's thread
    Catalogue& placing;    ///< the same one, opened again for the thread that places
    const ArtworkStore& artwork;
  };
  using OnEnd = std::function<void(const DownloadRecord&)>;

  /// `beforeFetch` is called right before each fetch; its failure is the download's.
  SongFiler(const Ground& ground, const FetchLimits& limits, std::function<MaybeFailure()> beforeFetch);

  /// Takes a download to a final state in the catalogue, and tells `onEnd`, on any thread, perhaps after this
  /// call; downloads end in the order of the calls. When `stop` is asked for before the song is whole, the
  /// download is `queued` again and nothing is told.
  void file(DownloadRecord record, const SongReceiver::OnProgress& onProgress, const std::stop_token& stop,
            const OnEnd& onEnd);
  /// Waits until everything has ended.
  void finish();

 private:
  struct Whole {
    SongOffer offer;
    PartFile part;
  };
  Result<std::optional<Whole>> fetchUnlessDuplicate(DownloadRecord& record,
                                                    const SongReceiver::OnProgress& onProgress,
                                                    const std::stop_token& stop);
  Result<PartFile> fetchInto(const DownloadRecord& record, const SongOffer& offer,
                             const SongReceiver::OnProgress& onProgress, const std::stop_token& stop) const;
  MaybeFailure tryPlace(Whole song, DownloadRecord& record);
  void place(Whole song, DownloadRecord record, const OnEnd& onEnd);
  void conclude(DownloadRecord record, Catalogue& catalogue, const OnEnd& onEnd) const;

  Ground _ground;
  FilingPlanner _planner;
  SongPlacer _placer;
  FetchLimits _limits;
  std::function<MaybeFailure()> _beforeFetch;
  std::future<void> _placing;  // last: its end is waited for before anything else goes
};

}  // namespace quaverly::library
