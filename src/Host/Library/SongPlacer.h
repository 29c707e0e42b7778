#pragma once

#include <string>

#include "Host/Library/Catalogue.h"
#include "Host/Library/FilingPlan.h"
#include "Host/Library/PartFile.h"
#include "Host/Library/Result.h"
#include "Host/Library/SongOffer.h"

namespace quaverly::library {

/// Gives whole songs their names in the library: the last step of filing, and the one that waits for the
/// disk. Blocks; one thread at a time.
class SongPlacer {
 public:
  /// The catalogue must outlive the placer.
  SongPlacer(std::string libraryFolder, Catalogue& catalogue);

  /// Takes a download whose song is whole to the state `filed`, in the record and in the catalogue, or to
  /// `duplicate` in the record when the same song was filed meanwhile. With a failure nothing of the song is
  /// in the library.
  MaybeFailure place(PartFile& part, const SongOffer& offer, DownloadRecord& record);

 private:
  Result<PartFile::Placing> placeAs(const FilingPlan& plan, const SongOffer& offer, PartFile& part,
                                    DownloadRecord& record);
  MaybeFailure makeSafe(PartFile& part, const SongRecord& song, const DownloadRecord& record);

  std::string _libraryFolder;
  Catalogue& _catalogue;
  FilingPlanner _planner;
};

/// Tells in a download's record that the library has its song already.
void markDuplicate(DownloadRecord& record, const FilingPlan& plan);

}  // namespace quaverly::library
