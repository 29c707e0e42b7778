#pragma once

#include <vector>

#include "Platform/AVFoundation/TagContents.h"
#include "Platform/AVFoundation/TagsAround.h"

namespace quaverly::tags {

/// What the tags of a descriptor's file say, a group per tag format, the richest last. Empty for a file that
/// is no audio, which its content tells. ID3v1, whose fields are short, speaks only where no other tag does.
std::vector<TagContents> readTags(int descriptor);

/// The same for a file whose tags around the audio were read already.
std::vector<TagContents> readTags(int descriptor, TagsAround& around);

}  // namespace quaverly::tags
