#include "Host/Library/StoredSong.h"

#include "Host/Library/ContentHasher.h"

namespace quaverly::library {
namespace {

/// The song is not what was offered; whether the source is still tells whose fault it is.
Failure differs(const SongOffer& offer) {
  if (contentOf(offer.source.get(), offer.file) != offer.content) return sourceChanged();
  return {"What was stored differs from the file. Try again; if it happens again, check the disk."};
}

}  // namespace

MaybeFailure tagStored(PartFile& part, const SongOffer& offer) {
  if (offer.file.kind == AudioKind::mpeg) return std::nullopt;
  if (hashOfFile(part.descriptor()) != offer.content) return differs(offer);
  const auto stored = inspectSong(part.descriptor());
  if (stored && rewriteInPlace(part.descriptor(), *stored, offer.wanted, offer.artwork)) return std::nullopt;
  return Failure{"The song's tags cannot be written. Is the disk full?"};
}

MaybeFailure checkStored(const PartFile& part, const SongOffer& offer) {
  const auto stored = inspectSong(part.descriptor());
  const bool isSame = stored && stored->kind == offer.file.kind && stored->tags == offer.after &&
                      audioHash(part.descriptor(), *stored) == offer.audio;
  if (isSame) return std::nullopt;
  return differs(offer);
}

}  // namespace quaverly::library
