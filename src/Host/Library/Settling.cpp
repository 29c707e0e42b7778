#include "Host/Library/Settling.h"

#include "Host/Library/FileDescriptor.h"
#include "Host/Library/PartFile.h"

namespace quaverly::library {
namespace {

/// Whether the file at a song's path is that song, whole.
bool isThere(const SongRecord& song) {
  const auto file = FileDescriptor::openForReading(song.path);
  if (!file || !file.isRegularFile() || file.length() != song.size) return false;
  const auto content = inspectSong(file.get());
  return content && audioHash(file.get(), *content) == song.audio;
}

MaybeFailure requeue(DownloadRecord record, Catalogue& catalogue) {
  record.state = DownloadState::queued;
  record.libraryPath.clear();
  record.reason.clear();
  return catalogue.update(record);
}

MaybeFailure settlePlacing(DownloadRecord record, Catalogue& catalogue) {
  const auto song = catalogue.intention(record.id);
  if (!song) return song.failure();
  if (!*song || !isThere(**song)) return requeue(std::move(record), catalogue);
  record.state = DownloadState::filed;
  return catalogue.file(record, **song);
}

MaybeFailure settle(const DownloadRecord& record, Catalogue& catalogue) {
  switch (record.state) {
    case DownloadState::placing:
      return settlePlacing(record, catalogue);
    case DownloadState::fetching:
      return requeue(record, catalogue);
    case DownloadState::queued:
    case DownloadState::filed:
    case DownloadState::duplicate:
    case DownloadState::failed:
      return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

MaybeFailure settleAfterCrash(const std::string& libraryFolder, Catalogue& catalogue,
                              const ArtworkStore& artwork) {
  const auto unfinished = catalogue.unfinishedDownloads();
  if (!unfinished) return unfinished.failure();
  for (const auto& record : *unfinished) {
    if (auto failure = settle(record, catalogue)) return failure;
  }
  PartFile::removeAbandoned(libraryFolder);
  for (const auto& name : artwork.names()) {
    if (auto failure = releaseArtwork(name, catalogue, artwork)) return failure;
  }
  return std::nullopt;
}

MaybeFailure releaseArtwork(const std::string& name, Catalogue& catalogue, const ArtworkStore& artwork) {
  if (name.empty()) return std::nullopt;
  // With the right to write, so that nobody adds a download with this cover between the question and the
  // deed.
  return catalogue.transact([&]() -> MaybeFailure {
    const auto needed = catalogue.needsArtwork(name);
    if (!needed) return needed.failure();
    if (!*needed) artwork.remove(name);
    return std::nullopt;
  });
}

}  // namespace quaverly::library
