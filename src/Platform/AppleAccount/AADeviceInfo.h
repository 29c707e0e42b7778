#pragma once

#include <optional>
#include <string>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

inline constexpr const char* AppleAccountFramework =
    "/System/Library/PrivateFrameworks/AppleAccount.framework";

/// What tells this device from others.
class AADeviceInfo : public NSObject {
 public:
  static std::optional<std::string> udid();
  static std::optional<std::string> osVersion();
};

}  // namespace quaverly
