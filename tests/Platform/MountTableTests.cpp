#include <gtest/gtest.h>

#include "Platform/Device/MountTable.h"

namespace quaverly {
namespace {

constexpr auto readOnly = MountTable::Access::readOnly;

MountTable deviceMounts() {
  MountTable mounts;
  mounts.mount("/var/mobile/Media", "/home/u/Downloads", readOnly);
  mounts.mount("/var/mobile/Media/Quaverly/tmp/", "/tmp/q", MountTable::Access::readWrite);
  mounts.mount("/Library/PreferenceBundles/QuaverlySettings.bundle", "/usr/share/q.bundle", readOnly);
  mounts.mount("/var/mobile/Import/1/a.mp3", "/music/a.mp3", readOnly);
  return mounts;
}

std::string hostPath(std::string_view devicePath) {
  const auto location = deviceMounts().resolve(devicePath);
  return location ? location->hostPath : "nothing";
}

TEST(MountTable, CanonicalPathsHaveNoDotsNorDoubledSlashes) {
  EXPECT_EQ(MountTable::canonical("/var//mobile/./Media/"), "/var/mobile/Media");
  EXPECT_EQ(MountTable::canonical("/var/mobile/../log"), "/var/log");
  EXPECT_EQ(MountTable::canonical("/../../etc"), "/etc");
  EXPECT_EQ(MountTable::canonical(""), "/");
  EXPECT_EQ(MountTable::canonical("/"), "/");
}

TEST(MountTable, PrivateVarReadsAsVar) {
  EXPECT_EQ(MountTable::canonical("/private/var/mobile"), "/var/mobile");
  EXPECT_EQ(MountTable::canonical("/private/etc"), "/private/etc");
  EXPECT_EQ(MountTable::canonical("/private"), "/private");
  EXPECT_EQ(hostPath("/private/var/mobile/Media/x"), "/home/u/Downloads/x");
}

TEST(MountTable, TheLongestMountedPrefixDecides) {
  EXPECT_EQ(hostPath("/var/mobile/Media"), "/home/u/Downloads");
  EXPECT_EQ(hostPath("/var/mobile/Media/a/b.mp3"), "/home/u/Downloads/a/b.mp3");
  EXPECT_EQ(hostPath("/var/mobile/Media/Quaverly/tmp/c.jpg"), "/tmp/q/c.jpg");
  EXPECT_EQ(hostPath("/var/mobile/Media/Quaverly/tmpfile"), "/home/u/Downloads/Quaverly/tmpfile");
  EXPECT_EQ(hostPath("/var/mobile/Import/1/a.mp3"), "/music/a.mp3");
}

TEST(MountTable, NothingOutsideTheMountsCanBeNamed) {
  EXPECT_EQ(hostPath("/etc/passwd"), "nothing");
  EXPECT_EQ(hostPath("/var/mobile/Media/../../../etc/passwd"), "nothing");
  EXPECT_EQ(hostPath("/var/mobile/Import/1/b.mp3"), "nothing");
  EXPECT_EQ(hostPath("/var/mobile/Mediaeval"), "nothing");
  EXPECT_EQ(hostPath(""), "nothing");
  EXPECT_EQ(hostPath(std::string_view("/var/mobile/Media/a\0.mp3", 24)), "nothing");
}

TEST(MountTable, FoldersOnTheWayShowTheWayAndNoMore) {
  const auto mounts = deviceMounts();
  EXPECT_EQ(mounts.namesTowardsMounts("/"), (std::vector<std::string>{"Library", "var"}));
  EXPECT_EQ(mounts.namesTowardsMounts("/var/mobile"), (std::vector<std::string>{"Import", "Media"}));
  EXPECT_EQ(mounts.namesTowardsMounts("/var/mobile/Media"), (std::vector<std::string>{"Quaverly"}));
  EXPECT_TRUE(mounts.isOnTheWay("/"));
  EXPECT_TRUE(mounts.isOnTheWay("/var"));
  EXPECT_FALSE(mounts.isOnTheWay("/var/mobile/Media"));
  EXPECT_FALSE(mounts.isOnTheWay("/etc"));
  EXPECT_FALSE(mounts.isOnTheWay(""));
}

TEST(MountTable, AHostPathHasTheDevicePathOfItsLongestMount) {
  const auto mounts = deviceMounts();
  EXPECT_EQ(mounts.devicePath("/home/u/Downloads/x/y.mp3"), "/var/mobile/Media/x/y.mp3");
  EXPECT_EQ(mounts.devicePath("/home/u/Downloads"), "/var/mobile/Media");
  EXPECT_EQ(mounts.devicePath("/home/u/Downloads2/x"), std::nullopt);
}

TEST(MountTable, AnUnmountedPathIsGone) {
  auto mounts = deviceMounts();
  mounts.unmount("/var/mobile/Import/1/a.mp3");
  EXPECT_FALSE(mounts.resolve("/var/mobile/Import/1/a.mp3").has_value());
}

}  // namespace
}  // namespace quaverly
