#pragma once

#include "Platform/AVFoundation/TagContents.h"
#include "Platform/AVFoundation/TagsAround.h"

namespace quaverly::tags {

/// The tags that a container other than MPEG's has of its own; empty when there are none.
TagContents readWithTagLib(int descriptor, const TagsAround& around);

}  // namespace quaverly::tags
