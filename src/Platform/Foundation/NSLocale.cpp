#include "Platform/Foundation/NSLocale.h"

#include "Platform/Device/Device.h"

namespace quaverly {

const std::vector<std::string>& NSLocale::preferredLanguages() {
  return Device::current().preferredLanguages;
}

}  // namespace quaverly
