#include "Host/Library/SongOffer.h"

#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "Host/Library/ContentHasher.h"
#include "Host/Library/SystemFailure.h"

namespace quaverly::library {
namespace {

Failure unreadable(int errorNumber) {
  return systemFailure("The file cannot be read", errorNumber);
}

/// Asks before opening, so that a device or a pipe is left alone.
MaybeFailure checkSource(const std::string& path) {
  struct stat attributes {};
  if (stat(path.c_str(), &attributes) != 0) return unreadable(errno);
  if (S_ISDIR(attributes.st_mode)) return Failure{"This is a folder, not a song."};
  if (!S_ISREG(attributes.st_mode)) return Failure{"This is not a regular file."};
  if (attributes.st_size == 0) return Failure{"The file is empty."};
  return std::nullopt;
}

}  // namespace

Result<SongOffer> offerSong(const std::string& sourcePath, const SongTags& wanted,
                            const ArtworkChange& artwork) {
  if (sourcePath.empty()) return Failure{"The file lies outside what can be imported."};
  if (auto failure = checkSource(sourcePath)) return *failure;
  auto source = FileDescriptor::openForReading(sourcePath);
  if (!source) return unreadable(errno);
  auto file = inspectSong(source.get());
  if (!file) return Failure{"The file holds no audio that can be imported."};
  const auto audio = audioHash(source.get(), *file);
  // The audio of MPEG is all that is taken over, and needs to be read only once.
  const auto content = file->kind == AudioKind::mpeg ? audio : contentOf(source.get(), *file);
  if (!audio || !content) return unreadable(EIO);
  SongOffer offer{.source = std::move(source),
                  .sourcePath = sourcePath,
                  .file = std::move(*file),
                  .audio = *audio,
                  .content = *content,
                  .wanted = wanted,
                  .artwork = artwork,
                  .rewritten = {},
                  .after = {}};
  if (offer.file.kind != AudioKind::mpeg) {
    offer.after = tagsAfter(offer.file, wanted);
    return offer;
  }
  offer.rewritten = rewriteMpeg(offer.source.get(), offer.file, wanted, artwork);
  if (!offer.rewritten) return unreadable(EIO);
  offer.after = offer.rewritten->tags;
  return offer;
}

std::optional<ContentHash> contentOf(int descriptor, const SongFile& file) {
  return file.kind == AudioKind::mpeg ? audioHash(descriptor, file) : hashOfFile(descriptor);
}

Failure sourceChanged() {
  return {"The file changed while it was being imported. Try again."};
}

}  // namespace quaverly::library
