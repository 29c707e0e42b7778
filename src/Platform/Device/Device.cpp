#include "Platform/Device/Device.h"

namespace quaverly {

Device& Device::current() {
  static Device device;
  return device;
}

}  // namespace quaverly
