#include "Host/Library/SongPlacer.h"

#include <future>
#include <utility>

#include "Host/Library/SongFolder.h"

namespace quaverly::library {
namespace {

SongRecord songOf(const DownloadRecord& record, const SongOffer& offer, const FilingPlan& plan,
                  const PartFile& part) {
  SongRecord song;
  song.path = plan.path;
  song.tags = plan.after;
  song.audio = offer.audio;
  song.cover = plan.cover;
  song.size = part.length();
  song.download = record.id;
  return song;
}

}  // namespace

SongPlacer::SongPlacer(std::string libraryFolder, Catalogue& catalogue)
    : _libraryFolder(std::move(libraryFolder)), _catalogue(catalogue), _planner(_libraryFolder, catalogue) {}

MaybeFailure SongPlacer::place(PartFile& part, const SongOffer& offer, DownloadRecord& record) {
  for (;;) {
    const auto plan = _planner.plan(offer);
    if (!plan) return plan.failure();
    if (plan->duplicateOf) {
      markDuplicate(record, *plan);
      return std::nullopt;
    }
    const auto placing = placeAs(*plan, offer, part, record);
    if (!placing) return placing.failure();
    // Otherwise somebody took the name since it was chosen.
    if (*placing == PartFile::Placing::placed) return std::nullopt;
  }
}

Result<PartFile::Placing> SongPlacer::placeAs(const FilingPlan& plan, const SongOffer& offer, PartFile& part,
                                              DownloadRecord& record) {
  const auto folder = SongFolder::make(_libraryFolder, plan.artistFolder, plan.albumFolder);
  if (!folder) return folder.failure();
  const SongRecord song = songOf(record, offer, plan, part);
  record.state = DownloadState::placing;
  record.libraryPath = plan.path;
  record.reason = plan.namesake ? "Another song has this name already: " + *plan.namesake : "";
  if (auto failure = makeSafe(part, song, record)) return *failure;
  auto placing = part.placeAs(plan.path);
  if (!placing || *placing == PartFile::Placing::nameTaken) return placing;
  // From here on the song is in the library, and the intention tells the next start so, come what may.
  auto trouble = folder->flush();
  record.state = DownloadState::filed;
  if (auto failure = _catalogue.file(record, song)) trouble = failure;
  if (trouble) record.reason = "The song is filed, but: " + trouble->reason;
  return placing;
}

/// Song and intention are on the disk afterwards. Flushed at the same time, so that a file system with a
/// journal writes it once for both.
MaybeFailure SongPlacer::makeSafe(PartFile& part, const SongRecord& song, const DownloadRecord& record) {
  auto flushed = std::async(std::launch::async, [&part] { return part.flush(); });
  const auto intended = _catalogue.intend(record, song);
  const auto failure = flushed.get();
  return failure ? failure : intended;
}

void markDuplicate(DownloadRecord& record, const FilingPlan& plan) {
  record.state = DownloadState::duplicate;
  record.libraryPath = *plan.duplicateOf;
  record.reason = "The library has this song already.";
}

}  // namespace quaverly::library
