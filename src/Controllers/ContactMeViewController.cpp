#include "Controllers/ContactMeViewController.h"

#include "Controllers/DeviceNames.h"
#include "Other/ConfiguredAddresses.h"
#include "Platform/AppleAccount/AADeviceInfo.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSClass.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly {
namespace {

constexpr const char* head =
    "<style>p{margin-top: 0em;margin-bottom: 0.1em;}</style>"
    "<p>&nbsp;</p><p>&nbsp;</p><p>&nbsp;</p><p>&nbsp;</p><p>&nbsp;</p>";
constexpr const char* version = "1.4.5";

std::string line(const char* label, const std::optional<std::string>& value) {
  return std::string("<p><span style=\"font-family:Arial;font-size:11px;\"><strong>") + label + "</strong> " +
         value.value_or("(null)") + "</span></p>";
}

}  // namespace

ContactMeViewController* ContactMeViewController::initWithNibNameBundle(
    const std::optional<std::string>& nibName, const Ref<NSBundle>& bundle) {
  if (!MFMailComposeViewController::initWithNibNameBundle(nibName, bundle)) return nullptr;
  setMailComposeDelegate(this);
  setSubject("Quaverly Support");
  setMessageBodyIsHTML(body(), true);
  setToRecipients({ConfiguredAddresses::supportMailbox()});
  const auto status =
      NSData::dataWithContentsOfFile(NSStringByAppendingPathComponent("/var/lib/dpkg/", "status"));
  addAttachmentDataMimeTypeFileName(status, "text/plain", "Cydia Status.txt");
  return this;
}

std::string ContactMeViewController::body() {
  const auto framework = NSBundle::bundleWithPath(AppleAccountFramework);
  if (framework) framework->load();
  const bool isKnown = NSClassFromString("AADeviceInfo") != nullptr;
  std::string text = head;
  text += line("Device:", platformString());
  text += line("Udid:", isKnown ? AADeviceInfo::udid() : std::nullopt);
  text += line("iOS Version:", isKnown ? AADeviceInfo::osVersion() : std::nullopt);
  text += line("Quaverly Version:", version);
  return text;
}

std::string ContactMeViewController::platformString() {
  return nameOfMachine(Device::current().machine);
}

void ContactMeViewController::mailComposeControllerDidFinishWithResultError(
    MFMailComposeViewController& controller, MFMailComposeResult, const Ref<NSError>&) {
  controller.dismissViewControllerAnimatedCompletion(UIAnimated::Yes);
}

}  // namespace quaverly
