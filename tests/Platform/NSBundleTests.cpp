#include "Platform/Foundation/NSBundle.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "Platform/Foundation/NSFramework.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

constexpr const char* frameworkPath = "/System/Library/PrivateFrameworks/StoreServices.framework";

class Bundle : public ::testing::Test {
 protected:
  std::string text(std::string_view key, std::optional<std::string_view> value = std::nullopt,
                   std::optional<std::string_view> table = std::nullopt) const {
    return NSBundle::bundleWithPath(device.bundlePath)->localizedStringForKeyValueTable(key, value, table);
  }

  test::TestDevice device;
};

TEST_F(Bundle, AFolderIsABundleAndAFileIsNone) {
  device.bundle().write("file", "x");
  EXPECT_TRUE(NSBundle::bundleWithPath(device.bundlePath));
  EXPECT_FALSE(NSBundle::bundleWithPath(std::string(device.bundlePath) + "/none"));
  EXPECT_FALSE(NSBundle::bundleWithPath(std::string(device.bundlePath) + "/file"));
  EXPECT_FALSE(NSBundle::bundleWithPath(""));
}

TEST_F(Bundle, ThePlatformKeepsOpenedBundles) {
  const auto bundle = NSBundle::bundleWithPath(device.bundlePath);
  EXPECT_EQ(NSBundle::bundleWithPath(std::string(device.bundlePath) + "/"), bundle);
  EXPECT_EQ(bundle->bundlePath(), device.bundlePath);
}

TEST_F(Bundle, AnotherFolderUnderTheSamePathIsAnotherBundle) {
  const auto before = NSBundle::bundleWithPath(device.bundlePath);
  const test::TemporaryFolder other;
  device->mounts.mount(device.bundlePath, other.path(), MountTable::Access::readOnly);
  EXPECT_FALSE(NSBundle::bundleWithPath(device.bundlePath) == before);
}

TEST_F(Bundle, ResourcesAreFoundByNameAndType) {
  device.bundle().write("a.png", "x");
  device.bundle().makeFolder("en.lproj");
  const auto bundle = NSBundle::bundleWithPath(device.bundlePath);
  EXPECT_EQ(bundle->pathForResourceOfType("a", "png"), std::string(device.bundlePath) + "/a.png");
  EXPECT_EQ(bundle->pathForResourceOfType("en", "lproj"), std::string(device.bundlePath) + "/en.lproj");
  EXPECT_EQ(bundle->pathForResourceOfType("a", "jpg"), std::nullopt);
  EXPECT_EQ(bundle->pathForResourceOfType("de", "lproj"), std::nullopt);
}

TEST_F(Bundle, TextsComeFromTheNamedTableOrTheDefaultOne) {
  device.bundle().write("Localizable.strings", "k = default;");
  device.bundle().write("Other.strings", "k = other;");
  EXPECT_EQ(text("k"), "default");
  EXPECT_EQ(text("k", std::nullopt, "Other"), "other");
}

TEST_F(Bundle, AMissingKeyYieldsTheValueOrItself) {
  device.bundle().write("Localizable.strings", "empty = \"\";");
  EXPECT_EQ(text("k"), "k");
  EXPECT_EQ(text("k", ""), "k");
  EXPECT_EQ(text("k", "value"), "value");
  EXPECT_EQ(text("empty", "value"), "");
  EXPECT_EQ(text("k", "", "NoTable"), "k");
}

TEST_F(Bundle, ADamagedOrTooLargeTableCountsAsNone) {
  device.bundle().write("Damaged.strings", "k = x j;");
  device.bundle().write("Large.strings", "k = x; //" + std::string(1 << 20, ' '));
  device.bundle().makeFolder("Folder.strings");
  for (const char* table : {"Damaged", "Large", "Folder"}) EXPECT_EQ(text("k", "", table), "k") << table;
}

TEST_F(Bundle, ATableIsReadOnceButAMissingOneIsLookedForAgain) {
  EXPECT_EQ(text("k"), "k");
  device.bundle().write("Localizable.strings", "k = first;");
  EXPECT_EQ(text("k"), "first");
  device.bundle().write("Localizable.strings", "k = second;");
  EXPECT_EQ(text("k"), "first");
}

TEST_F(Bundle, FrameworksAreLoadedAndUnloadedCounted) {
  const auto framework = NSBundle::bundleWithPath(frameworkPath);
  ASSERT_TRUE(framework);
  EXPECT_FALSE(framework->isLoaded());
  EXPECT_TRUE(framework->load());
  EXPECT_TRUE(framework->load());
  EXPECT_TRUE(framework->unload());
  EXPECT_TRUE(isFrameworkLoaded(frameworkPath));
  EXPECT_TRUE(framework->unload());
  EXPECT_FALSE(isFrameworkLoaded(frameworkPath));
  EXPECT_FALSE(framework->unload());
}

TEST_F(Bundle, AFrameworkThatTheDeviceLacksIsNoBundle) {
  const auto early = NSBundle::bundleWithPath(frameworkPath);
  device->absentFrameworks.insert(frameworkPath);
  EXPECT_FALSE(NSBundle::bundleWithPath(frameworkPath));
  EXPECT_FALSE(early->load());
}

TEST_F(Bundle, ManyThreadsReadTheSameTexts) {
  device.bundle().write("Localizable.strings", "k = x;");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([this] {
      for (int repeat = 0; repeat < 200; ++repeat) ASSERT_EQ(text("k"), "x");
    });
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace quaverly
