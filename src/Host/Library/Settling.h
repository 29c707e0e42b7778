#pragma once

#include <string>

#include "Host/Library/ArtworkStore.h"
#include "Host/Library/Catalogue.h"
#include "Host/Library/Result.h"

namespace quaverly::library {

/// Brings catalogue and library together after a crash: a song that was about to get its name and has it is
/// filed, every other unfinished download waits in the queue again, and what nobody needs is removed. Only
/// with the turn on the data folder.
MaybeFailure settleAfterCrash(const std::string& libraryFolder, Catalogue& catalogue,
                              const ArtworkStore& artwork);

/// Removes the copy of a cover unless another download needs it.
MaybeFailure releaseArtwork(const std::string& name, Catalogue& catalogue, const ArtworkStore& artwork);

}  // namespace quaverly::library
