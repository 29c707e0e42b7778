#include "Platform/AppleAccount/AADeviceInfo.h"

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSClass.h"

namespace quaverly {
namespace {

const NSClassOf<AADeviceInfo> deviceInfoClass("AADeviceInfo", AppleAccountFramework);

std::optional<std::string> presence(const std::string& fact) {
  return fact.empty() ? std::nullopt : std::optional(fact);
}

}  // namespace

std::optional<std::string> AADeviceInfo::udid() {
  return presence(Device::current().uniqueIdentifier);
}

std::optional<std::string> AADeviceInfo::osVersion() {
  return presence(Device::current().systemVersion);
}

}  // namespace quaverly
