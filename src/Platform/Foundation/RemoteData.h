#pragma once

#include <optional>
#include <string>

#include "Platform/Foundation/NSData.h"

namespace quaverly {

/// What a server sends for an HTTP URL, as `NSData::dataWithContentsOfURL` promises it.
std::optional<NSData> remoteData(const std::string& url, const NSDataLimits& limits);

}  // namespace quaverly
