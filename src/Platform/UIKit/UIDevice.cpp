#include "Platform/UIKit/UIDevice.h"

#include "Platform/Device/Device.h"

namespace quaverly {

const UIDevice& UIDevice::currentDevice() {
  static const UIDevice device;
  return device;
}

const std::string& UIDevice::systemVersion() const {
  return Device::current().systemVersion;
}

}  // namespace quaverly
