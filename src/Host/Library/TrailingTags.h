#pragma once

#include <string>

#include "Host/Library/TagChange.h"
#include "Platform/AVFoundation/TagsAround.h"

namespace quaverly::library {

/// What follows the audio of an MPEG file, as it becomes: APE tags and ID3v1 no longer contradict the wanted
/// tags and are otherwise as they were, lyrics stay, and an ID3v2 tag is gone, since what it says stands in
/// front of the audio then. `artwork` is what became of the pictures there.
std::string rewrittenTail(const tags::TagsAround& around, const TagChange& change,
                          ArtworkChange::Kind artwork);

}  // namespace quaverly::library
