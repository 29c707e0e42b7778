#include <gtest/gtest.h>

#include "Platform/AppleAccount/AADeviceInfo.h"
#include "Platform/Foundation/NSBundle.h"
#include "Platform/Foundation/NSClass.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

TEST(AADeviceInfo, SaysWhatTheDeviceIs) {
  test::TestDevice device;
  device->uniqueIdentifier = "0123456789abcdef";
  device->systemVersion = "12.5";
  EXPECT_EQ(AADeviceInfo::udid(), "0123456789abcdef");
  EXPECT_EQ(AADeviceInfo::osVersion(), "12.5");
}

TEST(AADeviceInfo, WhatIsNotKnownIsAbsent) {
  test::TestDevice device;
  device->systemVersion.clear();
  EXPECT_EQ(AADeviceInfo::udid(), std::nullopt);
  EXPECT_EQ(AADeviceInfo::osVersion(), std::nullopt);
}

TEST(AADeviceInfo, IsThereWhileItsFrameworkIsLoaded) {
  test::TestDevice device;
  EXPECT_FALSE(NSClassFromString("AADeviceInfo"));
  const auto framework = NSBundle::bundleWithPath(AppleAccountFramework);
  ASSERT_TRUE(framework);
  framework->load();
  EXPECT_TRUE(NSClassFromString("AADeviceInfo"));
  framework->unload();
}

}  // namespace
}  // namespace quaverly
