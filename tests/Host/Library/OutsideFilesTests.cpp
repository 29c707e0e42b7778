#include "Host/Library/OutsideFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "Platform/Foundation/NSData.h"
#include "Support/TestDevice.h"

namespace quaverly::library {
namespace {

class OutsideFilesTest : public testing::Test {
 protected:
  static std::optional<std::string> hostPath(const std::string& devicePath) {
    const auto location = Device::current().mounts.resolve(devicePath);
    return location ? std::optional(location->hostPath) : std::nullopt;
  }

  test::TestDevice _device;
  test::TemporaryFolder _outside;
  OutsideFiles _files;
};

TEST_F(OutsideFilesTest, AFileHasAPathWhileItLives) {
  const auto path = _outside.write("a b.mp3", "song");
  auto file = *_files.mount(path);
  EXPECT_EQ(file->devicePath(), "/var/mobile/Import/1/a b.mp3");
  EXPECT_EQ(NSData::dataWithContentsOfFile(file->devicePath())->text(), "song");
  EXPECT_EQ(_device->mounts.resolve(file->devicePath())->access, MountTable::Access::readOnly);
  EXPECT_EQ(_files.mounted(file->devicePath()), file);
  const auto devicePath = file->devicePath();
  file = nullptr;
  EXPECT_FALSE(hostPath(devicePath));
  EXPECT_EQ(_files.mounted(devicePath), nullptr);
}

TEST_F(OutsideFilesTest, ItsNeighboursAreNotMounted) {
  const auto path = _outside.write("album/01.mp3", "song");
  _outside.write("album/02.mp3", "another");
  const auto file = *_files.mount(path);
  EXPECT_FALSE(hostPath("/var/mobile/Import/1/02.mp3"));
  EXPECT_FALSE(hostPath("/var/mobile/Import/1"));
  EXPECT_FALSE(NSData::dataWithContentsOfFile(file->devicePath() + "/../02.mp3"));
}

TEST_F(OutsideFilesTest, FilesOfOneNameAreToldApart) {
  const auto one = *_files.mount(_outside.write("one/01.mp3", "1"));
  const auto two = *_files.mount(_outside.write("two/01.mp3", "2"));
  EXPECT_NE(one->devicePath(), two->devicePath());
  EXPECT_EQ(NSData::dataWithContentsOfFile(one->devicePath())->text(), "1");
  EXPECT_EQ(NSData::dataWithContentsOfFile(two->devicePath())->text(), "2");
}

TEST_F(OutsideFilesTest, ANameThatIsNoTextIsRefused) {
  const auto file = _files.mount("/somewhere/bad\xff.mp3");
  ASSERT_FALSE(file);
  EXPECT_THAT(file.failure().reason, testing::HasSubstr("Rename the file"));
  EXPECT_TRUE(_files.mount("/bad\xff/good.mp3"));
}

TEST_F(OutsideFilesTest, AFileInTheMediaFolderHasItsPathAlready) {
  const auto path = _device.media().write("album/01.mp3", "song");
  EXPECT_EQ(mountedDevicePath(path), "/var/mobile/Media/album/01.mp3");
  EXPECT_FALSE(mountedDevicePath(_outside.write("01.mp3", "song")));
}

TEST_F(OutsideFilesTest, AWayThroughLinksLeadsIntoTheMediaFolderToo) {
  _device.media().write("album/01.mp3", "song");
  std::filesystem::create_directory_symlink(_device.media().path() / "album", _outside / "link");
  EXPECT_EQ(mountedDevicePath(_outside / "link/01.mp3"), "/var/mobile/Media/album/01.mp3");
}

TEST_F(OutsideFilesTest, AFileThatAnotherMountHidesLiesOutside) {
  EXPECT_FALSE(mountedDevicePath(_device.media().write("Quaverly/tmp/hidden.mp3", "song")));
}

}  // namespace
}  // namespace quaverly::library
