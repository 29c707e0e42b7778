#include "Host/Library/StoredSong.h"

namespace quaverly::library {

MaybeFailure tagStored(PartFile& part, const SongOffer& offer) {
  if (offer.file.kind == AudioKind::mpeg) return std::nullopt;
  const auto stored = inspectSong(part.descriptor());
  if (stored && rewriteInPlace(part.descriptor(), *stored, offer.wanted, offer.artwork)) return std::nullopt;
  return Failure{"The song's tags cannot be written. Is the disk full?"};
}

MaybeFailure checkStored(const PartFile& part, const SongOffer& offer) {
  const auto stored = inspectSong(part.descriptor());
  const bool isSame = stored && stored->kind == offer.file.kind && stored->tags == offer.after &&
                      audioHash(part.descriptor(), *stored) == offer.audio;
  if (isSame) return std::nullopt;
  return Failure{"What was stored differs from the file. Try again; if it happens again, check the disk."};
}

}  // namespace quaverly::library
