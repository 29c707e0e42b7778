#include "Controllers/DeviceNames.h"

#include <algorithm>
#include <array>

namespace quaverly {
namespace {

struct Machine {
  std::string_view identifier;
  std::string_view name;
};

constexpr std::array machines = {
    Machine{"iPhone1,1", "iPhone 1G"},
    Machine{"iPhone1,2", "iPhone 3G"},
    Machine{"iPhone2,1", "iPhone 3GS"},
    Machine{"iPhone3,1", "iPhone 4"},
    Machine{"iPhone3,2", "iPhone 4"},
    Machine{"iPhone3,3", "Verizon iPhone 4"},
    Machine{"iPhone4,1", "iPhone 4S"},
    Machine{"iPhone5,1", "iPhone 5 (GSM)"},
    Machine{"iPhone5,2", "iPhone 5 (GSM+CDMA)"},
    Machine{"iPhone5,3", "iPhone 5C (GSM)"},
    Machine{"iPhone5,4", "iPhone 5C (GSM+CDMA)"},
    Machine{"iPhone6,1", "iPhone 5S (GSM)"},
    Machine{"iPhone6,2", "iPhone 5S (GSM+CDMA)"},
    Machine{"iPhone7,1", "iPhone 6+"},
    Machine{"iPhone7,2", "iPhone 6"},
    Machine{"iPod1,1", "iPod Touch 1G"},
    Machine{"iPod2,1", "iPod Touch 2G"},
    Machine{"iPod3,1", "iPod Touch 3G"},
    Machine{"iPod4,1", "iPod Touch 4G"},
    Machine{"iPod5,1", "iPod Touch 5G"},
    Machine{"iPad1,1", "iPad"},
    Machine{"iPad2,1", "iPad 2 (WiFi)"},
    Machine{"iPad2,2", "iPad 2 (GSM)"},
    Machine{"iPad2,3", "iPad 2 (CDMA)"},
    Machine{"iPad2,4", "iPad 2 (WiFi)"},
    Machine{"iPad2,5", "iPad Mini (WiFi)"},
    Machine{"iPad2,6", "iPad Mini (GSM)"},
    Machine{"iPad2,7", "iPad Mini (GSM+CDMA)"},
    Machine{"iPad3,1", "iPad 3 (WiFi)"},
    Machine{"iPad3,2", "iPad 3 (GSM+CDMA)"},
    Machine{"iPad3,3", "iPad 3 (GSM)"},
    Machine{"iPad3,4", "iPad 4 (WiFi)"},
    Machine{"iPad3,5", "iPad 4 (GSM)"},
    Machine{"iPad3,6", "iPad 4 (GSM+CDMA)"},
    Machine{"iPad4,1", "iPad Air (WiFi)"},
    Machine{"iPad4,2", "iPad Air (Cellular)"},
    Machine{"iPad4,3", "iPad Air"},
    Machine{"iPad4,4", "iPad Mini 2G (WiFi)"},
    Machine{"iPad4,5", "iPad Mini 2G (Cellular)"},
    Machine{"iPad4,6", "iPad Mini 2G"},
    Machine{"i386", "Simulator"},
    Machine{"x86_64", "Simulator"},
};

}  // namespace

std::string nameOfMachine(std::string_view identifier) {
  const auto* found = std::ranges::find(machines, identifier, &Machine::identifier);
  return std::string(found == machines.end() ? identifier : found->name);
}

}  // namespace quaverly
