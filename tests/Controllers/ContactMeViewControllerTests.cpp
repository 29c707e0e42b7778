#include "Controllers/ContactMeViewController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/AppleAccount/AADeviceInfo.h"
#include "Platform/UIKit/UIApplication.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class SupportMail : public testing::Test {
 protected:
  SupportMail() {
    _device->machine = "iPhone7,2";
    _device->uniqueIdentifier = "0011223344556677";
    _device->systemVersion = "8.4";
    _device.bundle().write("Addresses.plist",
                           "<plist version=\"1.0\"><dict><key>SupportMailbox</key>"
                           "<string>help@maker.example</string></dict></plist>");
    _device->mounts.mount("/var/lib/dpkg", _packages.path(), MountTable::Access::readOnly);
  }

  Ref<ContactMeViewController> mail() const {
    auto made = make<ContactMeViewController>();
    EXPECT_EQ(made->init(), made.get());
    return made;
  }

  test::TestDevice _device;
  test::TemporaryFolder _packages;
};

TEST_F(SupportMail, IsFilledInByteForByte) {
  const auto made = mail();
  EXPECT_THAT(made->toRecipients(), ElementsAre("help@maker.example"));
  EXPECT_EQ(made->subject(), "Quaverly Support");
  EXPECT_TRUE(made->messageBodyIsHTML());
  EXPECT_EQ(
      made->messageBody(),
      "<style>p{margin-top: 0em;margin-bottom: 0.1em;}</style><p>&nbsp;</p><p>&nbsp;</p><p>&nbsp;</p>"
      "<p>&nbsp;</p><p>&nbsp;</p>"
      "<p><span style=\"font-family:Arial;font-size:11px;\"><strong>Device:</strong> iPhone 6</span></p>"
      "<p><span style=\"font-family:Arial;font-size:11px;\"><strong>Udid:</strong> "
      "0011223344556677</span></p>"
      "<p><span style=\"font-family:Arial;font-size:11px;\"><strong>iOS Version:</strong> 8.4</span></p>"
      "<p><span style=\"font-family:Arial;font-size:11px;\"><strong>Quaverly Version:</strong> "
      "1.4.5</span></p>");
}

TEST_F(SupportMail, AttachesTheStatusOfThePackages) {
  _packages.write("status", "Package: a\n");
  const auto attachments = mail()->attachments();
  ASSERT_THAT(attachments, SizeIs(1));
  EXPECT_EQ(attachments[0].data.text(), "Package: a\n");
  EXPECT_EQ(attachments[0].mimeType, "text/plain");
  EXPECT_EQ(attachments[0].fileName, "Cydia Status.txt");
}

TEST_F(SupportMail, WithoutAReadableStatusItIsMadeAllTheSame) {
  EXPECT_THAT(mail()->attachments(), IsEmpty());
  _packages.makeFolder("status");
  EXPECT_THAT(mail()->attachments(), IsEmpty());
}

TEST_F(SupportMail, WhatIsNotKnownOfTheDeviceIsPrintedAsAbsent) {
  _device->uniqueIdentifier.clear();
  EXPECT_THAT(mail()->messageBody(), HasSubstr("<strong>Udid:</strong> (null)</span>"));
  EXPECT_THAT(mail()->messageBody(), HasSubstr("<strong>iOS Version:</strong> 8.4</span>"));
}

TEST_F(SupportMail, WithoutTheFrameworkOrItsClassBothValuesAreAbsent) {
  const auto expectAbsent = [this] {
    EXPECT_THAT(mail()->messageBody(), HasSubstr("<strong>Udid:</strong> (null)</span>"));
    EXPECT_THAT(mail()->messageBody(), HasSubstr("<strong>iOS Version:</strong> (null)</span>"));
  };
  _device->absentFrameworks.insert(AppleAccountFramework);
  expectAbsent();
  _device->absentFrameworks.clear();
  _device->absentClasses.insert("AADeviceInfo");
  expectAbsent();
}

TEST_F(SupportMail, EveryOutcomeClosesIt) {
  const auto window = make<UIWindow>(CGRect{0, 0, 375, 667});
  const auto root = make<UIViewController>();
  window->setRootViewController(root);
  window->makeKeyAndVisible();
  using enum MFMailComposeResult;
  for (const auto result : {cancelled, saved, sent, failed}) {
    const auto shown = mail();
    root->presentViewControllerAnimatedCompletion(shown, UIAnimated::No);
    ASSERT_EQ(root->presentedViewController(), Ref<UIViewController>(shown));
    shown->finishWithResultError(result, nullptr);
    EXPECT_FALSE(root->presentedViewController());
  }
  UIApplication::sharedApplication().setKeyWindow(nullptr);
}

TEST_F(SupportMail, MachinesHaveTheNamesThatPeopleKnow) {
  const std::vector<std::pair<std::string, std::string>> names = {
      {"iPhone1,1", "iPhone 1G"},
      {"iPhone1,2", "iPhone 3G"},
      {"iPhone2,1", "iPhone 3GS"},
      {"iPhone3,1", "iPhone 4"},
      {"iPhone3,2", "iPhone 4"},
      {"iPhone3,3", "Verizon iPhone 4"},
      {"iPhone4,1", "iPhone 4S"},
      {"iPhone5,1", "iPhone 5 (GSM)"},
      {"iPhone5,2", "iPhone 5 (GSM+CDMA)"},
      {"iPhone5,3", "iPhone 5C (GSM)"},
      {"iPhone5,4", "iPhone 5C (GSM+CDMA)"},
      {"iPhone6,1", "iPhone 5S (GSM)"},
      {"iPhone6,2", "iPhone 5S (GSM+CDMA)"},
      {"iPhone7,1", "iPhone 6+"},
      {"iPhone7,2", "iPhone 6"},
      {"iPod1,1", "iPod Touch 1G"},
      {"iPod2,1", "iPod Touch 2G"},
      {"iPod3,1", "iPod Touch 3G"},
      {"iPod4,1", "iPod Touch 4G"},
      {"iPod5,1", "iPod Touch 5G"},
      {"iPad1,1", "iPad"},
      {"iPad2,1", "iPad 2 (WiFi)"},
      {"iPad2,2", "iPad 2 (GSM)"},
      {"iPad2,3", "iPad 2 (CDMA)"},
      {"iPad2,4", "iPad 2 (WiFi)"},
      {"iPad2,5", "iPad Mini (WiFi)"},
      {"iPad2,6", "iPad Mini (GSM)"},
      {"iPad2,7", "iPad Mini (GSM+CDMA)"},
      {"iPad3,1", "iPad 3 (WiFi)"},
      {"iPad3,2", "iPad 3 (GSM+CDMA)"},
      {"iPad3,3", "iPad 3 (GSM)"},
      {"iPad3,4", "iPad 4 (WiFi)"},
      {"iPad3,5", "iPad 4 (GSM)"},
      {"iPad3,6", "iPad 4 (GSM+CDMA)"},
      {"iPad4,1", "iPad Air (WiFi)"},
      {"iPad4,2", "iPad Air (Cellular)"},
      {"iPad4,3", "iPad Air"},
      {"iPad4,4", "iPad Mini 2G (WiFi)"},
      {"iPad4,5", "iPad Mini 2G (Cellular)"},
      {"iPad4,6", "iPad Mini 2G"},
      {"i386", "Simulator"},
      {"x86_64", "Simulator"},
      {"iPhone8,1", "iPhone8,1"},
      {"iphone7,1", "iphone7,1"},
      {"aarch64", "aarch64"},
      {"", ""},
  };
  for (const auto& [machine, name] : names) {
    _device->machine = machine;
    EXPECT_EQ(ContactMeViewController::platformString(), name);
  }
}

}  // namespace
}  // namespace quaverly
