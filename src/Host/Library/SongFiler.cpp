#include "Host/Library/SongFiler.h"

#include <future>
#include <utility>

#include "Host/Library/SongFolder.h"
#include "Host/Library/StoredSong.h"

namespace quaverly::library {
namespace {

void markDuplicate(DownloadRecord& record, const FilingPlan& plan) {
  record.state = DownloadState::duplicate;
  record.libraryPath = *plan.duplicateOf;
  record.reason = "The library has this song already.";
}

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

SongFiler::SongFiler(const LibrarySettings& settings, Catalogue& catalogue, const ArtworkStore& artwork,
                     const FetchLimits& limits, std::function<MaybeFailure()> beforeFetch)
    : _settings(settings),
      _catalogue(catalogue),
      _artwork(artwork),
      _planner(settings.libraryFolder, catalogue),
      _limits(limits),
      _beforeFetch(std::move(beforeFetch)) {}

void SongFiler::file(DownloadRecord& record, const SongReceiver::OnProgress& onProgress,
                     const std::stop_token& stop) {
  record.state = DownloadState::fetching;
  record.reason.clear();
  if (const auto failure = tryFile(record, onProgress, stop)) {
    const bool givenUp = stop.stop_requested() && record.state == DownloadState::fetching;
    record.state = givenUp ? DownloadState::queued : DownloadState::failed;
    record.reason = givenUp ? "" : failure->reason;
    record.libraryPath.clear();
  }
  if (record.state == DownloadState::filed) return;
  if (const auto failure = _catalogue.update(record)) record.reason += " " + failure->reason;
}

MaybeFailure SongFiler::tryFile(DownloadRecord& record, const SongReceiver::OnProgress& onProgress,
                                const std::stop_token& stop) {
  const auto artwork = artworkOf(record, _artwork);
  if (!artwork) return artwork.failure();
  const auto offer = offerSong(record.sourcePath, record.metadata.tags(), *artwork);
  if (!offer) return offer.failure();
  record.bytes = offer->file.length;
  auto plan = _planner.plan(*offer);
  if (!plan) return plan.failure();
  if (plan->duplicateOf) {
    markDuplicate(record, *plan);
    return std::nullopt;
  }
  if (auto failure = _catalogue.update(record)) return failure;
  auto part = fetched(record, *offer, onProgress, stop);
  if (!part) return part.failure();
  return place(*part, *offer, std::move(*plan), record);
}

Result<PartFile> SongFiler::fetched(const DownloadRecord& record, const SongOffer& offer,
                                    const SongReceiver::OnProgress& onProgress,
                                    const std::stop_token& stop) const {
  auto part = PartFile::create(_settings.libraryFolder);
  if (!part) return part.failure();
  SongReceiver receiver(offer, *part, onProgress, stop);
  if (auto failure = receiver.begin()) return *failure;
  if (auto failure = _beforeFetch()) return *failure;
  const auto bytes = fetch(record.assetURL, _limits, receiver);
  if (receiver.failure()) return *receiver.failure();
  if (!bytes) return bytes.failure();
  if (auto failure = receiver.end()) return *failure;
  if (auto failure = tagStored(*part, offer)) return *failure;
  if (auto failure = checkStored(*part, offer)) return *failure;
  return part;
}

MaybeFailure SongFiler::place(PartFile& part, const SongOffer& offer, FilingPlan plan,
                              DownloadRecord& record) {
  for (;;) {
    const auto placing = placeAs(plan, offer, part, record);
    if (!placing) return placing.failure();
    if (*placing == PartFile::Placing::placed) return std::nullopt;
    // Somebody took the name since it was chosen.
    auto next = _planner.plan(offer);
    if (!next) return next.failure();
    plan = std::move(*next);
  }
}

Result<PartFile::Placing> SongFiler::placeAs(const FilingPlan& plan, const SongOffer& offer, PartFile& part,
                                             DownloadRecord& record) {
  const auto folder = SongFolder::make(_settings.libraryFolder, plan.artistFolder, plan.albumFolder);
  if (!folder) return folder.failure();
  const SongRecord song = songOf(record, offer, plan, part);
  record.state = DownloadState::placing;
  record.libraryPath = plan.path;
  record.reason = plan.namesake ? "Another song has this name already: " + *plan.namesake : "";
  // Two flushes at once: the file system makes one of them.
  auto flushed = std::async(std::launch::async, [&part] { return part.flush(); });
  const auto intended = _catalogue.intend(record, song);
  if (auto failure = flushed.get()) return *failure;
  if (intended) return *intended;
  auto placing = part.placeAs(plan.path);
  if (!placing || *placing == PartFile::Placing::nameTaken) return placing;
  // From here on the song is in the library, and the intention tells the next start so, come what may.
  auto trouble = folder->flush();
  record.state = DownloadState::filed;
  if (auto failure = _catalogue.file(record, song)) trouble = failure;
  if (trouble) record.reason = "The song is filed, but: " + trouble->reason;
  return placing;
}

}  // namespace quaverly::library
