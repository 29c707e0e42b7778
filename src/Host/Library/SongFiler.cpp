#include "Host/Library/SongFiler.h"

#include <utility>

#include "Host/Library/Settling.h"
#include "Host/Library/StoredSong.h"
#include "Platform/Foundation/NSLog.h"

namespace quaverly::library {
namespace {

void markFailed(DownloadRecord& record, const Failure& failure) {
  record.state = DownloadState::failed;
  record.reason = failure.reason;
  record.libraryPath.clear();
}

}  // namespace

SongFiler::SongFiler(const Ground& ground, const FetchLimits& limits,
                     std::function<MaybeFailure()> beforeFetch)
    : _ground(ground),
      _planner(ground.settings.libraryFolder, ground.catalogue),
      _placer(ground.settings.libraryFolder, ground.placing),
      _limits(limits),
      _beforeFetch(std::move(beforeFetch)) {}

void SongFiler::file(DownloadRecord record, const SongReceiver::OnProgress& onProgress,
                     const std::stop_token& stop, const OnEnd& onEnd) {
  record.state = DownloadState::fetching;
  record.reason.clear();
  auto song = fetchUnlessDuplicate(record, onProgress, stop);
  finish();
  if (song && *song) {
    _placing = std::async(std::launch::async, [this, song = std::move(**song), record, onEnd]() mutable {
      place(std::move(song), std::move(record), onEnd);
    });
    return;
  }
  if (!song) markFailed(record, song.failure());
  if (!song && stop.stop_requested()) {
    record.state = DownloadState::queued;
    record.reason.clear();
  }
  conclude(std::move(record), _ground.catalogue, onEnd);
}

void SongFiler::finish() {
  if (_placing.valid()) _placing.get();
}

Result<std::optional<SongFiler::Whole>> SongFiler::fetchUnlessDuplicate(
    DownloadRecord& record, const SongReceiver::OnProgress& onProgress, const std::stop_token& stop) {
  const auto artwork = artworkOf(record, _ground.artwork);
  if (!artwork) return artwork.failure();
  auto offer = offerSong(record.sourcePath, record.metadata.tags(), *artwork);
  if (!offer) return offer.failure();
  record.bytes = offer->file.length;
  const auto plan = _planner.plan(*offer);
  if (!plan) return plan.failure();
  if (plan->duplicateOf) {
    markDuplicate(record, *plan);
    return std::optional<Whole>();
  }
  if (auto failure = _ground.catalogue.update(record)) return *failure;
  auto part = fetchInto(record, *offer, onProgress, stop);
  if (!part) return part.failure();
  return std::optional(Whole{std::move(*offer), std::move(*part)});
}

Result<PartFile> SongFiler::fetchInto(const DownloadRecord& record, const SongOffer& offer,
                                      const SongReceiver::OnProgress& onProgress,
                                      const std::stop_token& stop) const {
  auto part = PartFile::create(_ground.settings.libraryFolder);
  if (!part) return part.failure();
  SongReceiver receiver(offer, *part, onProgress, stop);
  if (auto failure = receiver.begin()) return *failure;
  if (auto failure = _beforeFetch()) return *failure;
  const auto bytes = fetch(record.assetURL, _limits, receiver);
  if (receiver.failure()) return *receiver.failure();
  if (!bytes) return bytes.failure();
  if (auto failure = receiver.end()) return *failure;
  return part;
}

/// Of a song that could not be placed nothing is left afterwards.
MaybeFailure SongFiler::tryPlace(Whole song, DownloadRecord& record) {
  if (auto failure = tagStored(song.part, song.offer)) return failure;
  if (auto failure = checkStored(song.part, song.offer)) return failure;
  return _placer.place(song.part, song.offer, record);
}

void SongFiler::place(Whole song, DownloadRecord record, const OnEnd& onEnd) {
  if (const auto failure = tryPlace(std::move(song), record)) markFailed(record, *failure);
  conclude(std::move(record), _ground.placing, onEnd);
}

void SongFiler::conclude(DownloadRecord record, Catalogue& catalogue, const OnEnd& onEnd) const {
  if (record.state != DownloadState::filed) {
    if (const auto failure = catalogue.update(record)) record.reason += " " + failure->reason;
  }
  if (!isFinal(record.state)) return;
  if (const auto failure = releaseArtwork(record.artwork, catalogue, _ground.artwork)) NSLog(failure->reason);
  onEnd(record);
}

}  // namespace quaverly::library
