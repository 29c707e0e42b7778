#include "Other/ConfiguredAddresses.h"

#include <string_view>

#include "Platform/Foundation/NSPropertyListSerialization.h"

namespace quaverly {
namespace {

constexpr const char* listPath = "/Library/PreferenceBundles/QuaverlySettings.bundle/Addresses.plist";

std::string addressNamed(std::string_view name) {
  const auto list = NSPropertyListSerialization::propertyListWithContentsOfFile(listPath);
  const auto* addresses = list ? list->dictionary() : nullptr;
  return addresses ? addresses->objectForKey(name).stringValue() : std::string();
}

}  // namespace

std::string ConfiguredAddresses::supportMailbox() {
  return addressNamed("SupportMailbox");
}

std::string ConfiguredAddresses::donationPage() {
  return addressNamed("DonationPage");
}

std::string ConfiguredAddresses::repositoryPage() {
  return addressNamed("RepositoryPage");
}

std::string ConfiguredAddresses::packageSource() {
  return addressNamed("PackageSource");
}

std::string ConfiguredAddresses::profilePage() {
  return addressNamed("ProfilePage");
}

std::string ConfiguredAddresses::composePage() {
  return addressNamed("ComposePage");
}

}  // namespace quaverly
