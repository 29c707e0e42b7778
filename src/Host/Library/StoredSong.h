#pragma once

#include "Host/Library/PartFile.h"
#include "Host/Library/Result.h"
#include "Host/Library/SongOffer.h"

namespace quaverly::library {

/// Writes the wanted tags into a stored song whose kind is tagged in place, once it proved to be what was
/// offered; MPEG audio has them already.
MaybeFailure tagStored(PartFile& part, const SongOffer& offer);

/// Reads a stored song back: the same kind of audio, the same audio, and the tags that were planned.
MaybeFailure checkStored(const PartFile& part, const SongOffer& offer);

}  // namespace quaverly::library
