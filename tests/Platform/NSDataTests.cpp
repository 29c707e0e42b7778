#include "Platform/Foundation/NSData.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using testing::IsEmpty;

std::string inMedia(std::string_view name) {
  return std::string(test::TestDevice::mediaPath) + "/" + std::string(name);
}

std::string inTemporary(std::string_view name) {
  return std::string(test::TestDevice::temporaryPath) + "/" + std::string(name);
}

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename());
  return names;
}

TEST(NSData, APartSharesTheBytesOfTheWhole) {
  const NSData whole("0123456789");
  const auto part = whole.subdataWithRange(2, 3);
  EXPECT_EQ(part.length(), 3U);
  EXPECT_EQ(part.text(), "234");
  EXPECT_EQ(part.bytes().data(), whole.bytes().data() + 2);
  EXPECT_EQ(whole.subdataWithRange(10, 0).text(), "");
  EXPECT_FALSE(whole.slice());
}

TEST(NSData, BorrowedBytesKeepTheirOwner) {
  auto owner = std::make_shared<std::string>("abc");
  const std::weak_ptr<std::string> watched = owner;
  NSData data(owner, std::as_bytes(std::span(*owner)));
  owner.reset();
  EXPECT_EQ(data.text(), "abc");
  data = NSData();
  EXPECT_TRUE(watched.expired());
}

TEST(NSData, OfAFileStaysBackedByItAndKnowsWhereItsPartsLie) {
  test::TestDevice device;
  device.media().write("a b.mp3", "0123456789");
  const auto data = NSData::dataWithContentsOfFile(inMedia("a b.mp3"));
  ASSERT_TRUE(data);
  EXPECT_EQ(data->length(), 10U);
  const auto part = data->subdataWithRange(4, 5).subdataWithRange(1, 2);
  ASSERT_TRUE(part.slice());
  EXPECT_EQ(part.slice()->offset, 5U);
  EXPECT_EQ(part.slice()->length, 2U);
  EXPECT_EQ(part.text(), "56");
  EXPECT_EQ(data->text(), "0123456789");
}

TEST(NSData, CopiesReadTheirFileOnce) {
  test::TestDevice device;
  device.media().write("x", "before");
  const auto data = NSData::dataWithContentsOfFile(inMedia("x"));
  const NSData copy = *data;
  EXPECT_EQ(copy.text(), "before");
  device.media().write("x", "behind");
  EXPECT_EQ(data->text(), "before");
}

TEST(NSData, OfAFileThatShrankHasFewerBytesThanItsLength) {
  test::TestDevice device;
  device.media().write("x", "0123456789");
  const auto data = NSData::dataWithContentsOfFile(inMedia("x"));
  device.media().write("x", "012");
  EXPECT_EQ(data->length(), 10U);
  EXPECT_EQ(data->text(), "012");
}

TEST(NSData, OnlyRegularFilesWithinTheMountsCanBeRead) {
  test::TestDevice device;
  device.media().makeFolder("folder");
  ASSERT_EQ(::mkfifo((device.media() / "pipe").c_str(), 0600), 0);
  for (const auto& path : {inMedia("missing"), inMedia("folder"), inMedia("pipe"), inMedia(""),
                           inMedia("../../../../etc/passwd"), std::string("/etc/passwd"), std::string()}) {
    EXPECT_FALSE(NSData::dataWithContentsOfFile(path)) << path;
  }
}

TEST(NSData, OfADescriptorTakesItOverWhateverItIs) {
  const int folder = ::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  EXPECT_FALSE(NSData::dataWithDescriptor(folder));
  EXPECT_EQ(::fcntl(folder, F_GETFD), -1);
}

TEST(NSData, IsWrittenInOneStepAndLeavesNothingBeside) {
  test::TestDevice device;
  const auto folder = device.temporary().makeFolder("tmp");
  EXPECT_TRUE(NSData("one").writeToFileAtomically(inTemporary("x.jpg")));
  EXPECT_TRUE(NSData("two").writeToFileAtomically(inTemporary("x.jpg")));
  EXPECT_EQ(test::contentsOf(folder + "/x.jpg"), "two");
  EXPECT_THAT(namesIn(folder), testing::ElementsAre("x.jpg"));
}

TEST(NSData, AReaderOfAReplacedFileKeepsTheOldOne) {
  test::TestDevice device;
  device.temporary().makeFolder("tmp");
  ASSERT_TRUE(NSData("old").writeToFileAtomically(inTemporary("x")));
  const auto before = NSData::dataWithContentsOfFile(inTemporary("x"));
  ASSERT_TRUE(NSData("new one").writeToFileAtomically(inTemporary("x")));
  EXPECT_EQ(before->text(), "old");
}

TEST(NSData, WritingFailsWithoutATraceWhereItMustNotOrCannot) {
  test::TestDevice device;
  const auto folder = device.temporary().makeFolder("tmp");
  device.temporary().makeFolder("tmp/taken/by a folder");
  EXPECT_FALSE(NSData("x").writeToFileAtomically(inMedia("x")));
  EXPECT_FALSE(NSData("x").writeToFileAtomically("/nowhere/x"));
  EXPECT_FALSE(NSData("x").writeToFileAtomically(inTemporary("missing/x")));
  EXPECT_FALSE(NSData("x").writeToFileAtomically(inTemporary("taken")));
  EXPECT_THAT(namesIn(folder), testing::ElementsAre("taken"));
  EXPECT_THAT(namesIn(device.media().path()), IsEmpty());
}

TEST(NSData, ReplacingAFileKeepsItsPermissions) {
  test::TestDevice device;
  const auto folder = device.temporary().makeFolder("tmp");
  ASSERT_TRUE(NSData("x").writeToFileAtomically(inTemporary("x")));
  ASSERT_EQ(::chmod((folder + "/x").c_str(), 0640), 0);
  ASSERT_TRUE(NSData("y").writeToFileAtomically(inTemporary("x")));
  struct stat status;
  ASSERT_EQ(::stat((folder + "/x").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
}

}  // namespace
}  // namespace quaverly
