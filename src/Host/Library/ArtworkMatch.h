#pragma once

#include "Platform/AVFoundation/Bytes.h"
#include "Platform/Foundation/NSData.h"

namespace quaverly::library {

/// Whether `replacement` shows a picture that a file already has: it is the very same, or the JPEG file that
/// staging makes of it. Such a picture stays in the file as it was written, without having been encoded
/// twice.
bool isSamePicture(const NSData& replacement, tags::Bytes original);

}  // namespace quaverly::library
