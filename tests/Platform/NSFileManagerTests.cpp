#include "Platform/Foundation/NSFileManager.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class FileManager : public ::testing::Test {
 protected:
  std::vector<std::string> namesIn(std::string_view path) const {
    std::vector<std::string> names;
    if (const auto contents = manager.contentsOfDirectoryAtPath(path))
      for (const auto name : *contents) names.emplace_back(name);
    return names;
  }
  bool isDirectory(std::string_view path) const {
    bool isDirectory = true;
    manager.fileExistsAtPathIsDirectory(path, isDirectory);
    return isDirectory;
  }

  test::TestDevice device;
  NSFileManager& manager = NSFileManager::defaultManager();
};

void setModified(const std::string& hostPath, time_t seconds, long nanoseconds = 0) {
  const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
  ASSERT_EQ(utimensat(AT_FDCWD, hostPath.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

TEST_F(FileManager, ListsHiddenEntriesAndNeitherDotNorDotDot) {
  device.media().write("song.mp3", "x");
  device.media().write(".hidden", "x");
  device.media().makeFolder("album");
  EXPECT_THAT(namesIn("/var/mobile/Media"), UnorderedElementsAre("song.mp3", ".hidden", "album"));
}

TEST_F(FileManager, ListsInTheOrderOfTheFileSystem) {
  for (int i = 0; i < 50; ++i) device.media().write("song " + std::to_string(i), "");
  std::vector<std::string> expected;
  for (const auto& entry : std::filesystem::directory_iterator(device.media().path()))
    expected.push_back(entry.path().filename());
  EXPECT_EQ(namesIn("/var/mobile/Media"), expected);
}

TEST_F(FileManager, NamesAreBytes) {
  device.media().write("caf\xE9.mp3", "x");
  EXPECT_THAT(namesIn("/var/mobile/Media"), ElementsAre("caf\xE9.mp3"));
  EXPECT_TRUE(manager.fileExistsAtPath("/var/mobile/Media/caf\xE9.mp3"));
}

TEST_F(FileManager, FoldersOnTheWayToMountsListTheWay) {
  EXPECT_THAT(namesIn("/"), ElementsAre("Library", "var"));
  EXPECT_THAT(namesIn("/var/mobile"), ElementsAre("Media"));
  EXPECT_TRUE(isDirectory("/var"));
  EXPECT_TRUE(manager.isReadableFileAtPath("/var"));
  EXPECT_FALSE(manager.attributesOfItemAtPath("/var").has_value());
}

TEST_F(FileManager, AMountPointDoesNotShowUpInTheFolderItLiesIn) {
  device.temporary().makeFolder("tmp");
  EXPECT_THAT(namesIn("/var/mobile/Media"), IsEmpty());
  EXPECT_TRUE(manager.fileExistsAtPath("/var/mobile/Media/Quaverly/tmp"));
}

TEST_F(FileManager, AnEntryHiddenByAMountIsTheMount) {
  device.media().write("Quaverly/tmp", "a file");
  device.temporary().makeFolder("tmp");
  const auto contents = manager.contentsOfDirectoryAtPath("/var/mobile/Media/Quaverly");
  EXPECT_TRUE(isDirectory("/var/mobile/Media/Quaverly/tmp"));
}

TEST_F(FileManager, AFolderThatCannotBeReadHasNoContentsAndAReason) {
  device.media().write("file", "x");
  for (const char* path : {"/var/mobile/Media/none", "/var/mobile/Media/file", "/etc"}) {
    Ref<NSError> error;
    EXPECT_FALSE(manager.contentsOfDirectoryAtPath(path, &error).has_value()) << path;
    ASSERT_TRUE(error) << path;
    EXPECT_EQ(error->domain(), "NSCocoaErrorDomain");
    EXPECT_THAT(error->localizedDescription(), HasSubstr(path));
  }
}

TEST_F(FileManager, NothingOutsideTheMountsExists) {
  EXPECT_FALSE(manager.fileExistsAtPath("/etc/passwd"));
  EXPECT_FALSE(manager.isReadableFileAtPath("/etc/passwd"));
  EXPECT_FALSE(manager.attributesOfItemAtPath("/etc/passwd").has_value());
  EXPECT_FALSE(manager.fileExistsAtPath("/var/mobile/Media/../../../etc/passwd"));
}

TEST_F(FileManager, ANulByteEndsNoPath) {
  device.media().write("a", "x");
  const std::string path("/var/mobile/Media/a\0.mp3", 24);
  EXPECT_FALSE(manager.fileExistsAtPath(path));
  EXPECT_FALSE(manager.isReadableFileAtPath(path));
}

TEST_F(FileManager, TheDirectoryTestFollowsLinksAndTheAttributesAreTheLinksOwn) {
  device.media().write("target.mp3", std::string(1000, 'x'));
  device.media().makeFolder("folder");
  std::filesystem::create_symlink("target.mp3", device.media() / "to file");
  std::filesystem::create_directory_symlink("folder", device.media() / "to folder");
  std::filesystem::create_symlink("nowhere", device.media() / "dangling");
  setModified(device.media() / "to file", 1'000'000'000);

  EXPECT_FALSE(isDirectory("/var/mobile/Media/to file"));
  EXPECT_TRUE(isDirectory("/var/mobile/Media/to folder"));
  EXPECT_TRUE(manager.fileExistsAtPath("/var/mobile/Media/to file"));
  EXPECT_FALSE(manager.fileExistsAtPath("/var/mobile/Media/dangling"));
  EXPECT_FALSE(isDirectory("/var/mobile/Media/dangling"));

  const auto attributes = manager.attributesOfItemAtPath("/var/mobile/Media/to file");
  ASSERT_TRUE(attributes);
  EXPECT_EQ(attributes->fileSize(), std::string("target.mp3").size());
  EXPECT_EQ(attributes->fileModificationDate().time_since_epoch().count(), 1'000'000'000);
  EXPECT_TRUE(manager.attributesOfItemAtPath("/var/mobile/Media/dangling").has_value());
}

TEST_F(FileManager, ModificationDatesAreFullSecondsBeforeAndAfterTheEpoch) {
  const auto path = device.media().write("old", "");
  for (const time_t seconds : {time_t{-5}, time_t{0}, time_t{1'700'000'000}, time_t{5'000'000'000}}) {
    setModified(path, seconds, 999'999'999);
    const auto attributes = manager.attributesOfItemAtPath("/var/mobile/Media/old");
    ASSERT_TRUE(attributes);
    EXPECT_EQ(attributes->fileModificationDate().time_since_epoch().count(), seconds);
  }
}

TEST_F(FileManager, QuestionsThroughContentsAreAnsweredLikeFreshOnes) {
  device.media().write("file", "12345");
  device.media().makeFolder("folder");
  std::filesystem::create_symlink("folder", device.media() / "link");
  std::filesystem::create_symlink("nowhere", device.media() / "dangling");
  for (const char* folder : {"/var/mobile/Media", "/var/mobile/Media/", "/var//mobile/./Media"}) {
    const auto contents = manager.contentsOfDirectoryAtPath(folder);
    for (const char* name : {"file", "folder", "link", "dangling", "gone", ".", "..", "folder/..", ""}) {
      const auto through = std::string(folder) + "/" + name;
      const auto fresh = std::string("/private/var/mobile/Media/") + name;
      EXPECT_EQ(manager.fileExistsAtPath(through), manager.fileExistsAtPath(fresh)) << through;
      EXPECT_EQ(isDirectory(through), isDirectory(fresh)) << through;
      const auto attributes = manager.attributesOfItemAtPath(through);
      const auto expected = manager.attributesOfItemAtPath(fresh);
      ASSERT_EQ(attributes.has_value(), expected.has_value()) << through;
      if (!expected) continue;
      EXPECT_EQ(attributes->fileSize(), expected->fileSize()) << through;
    }
  }
}

TEST_F(FileManager, OneLookAtAnEntryServesTheTestAndTheAttributesOnce) {
  device.media().write("file", "1");
  const auto contents = manager.contentsOfDirectoryAtPath("/var/mobile/Media");
  const char* path = "/var/mobile/Media/file";
  manager.fileExistsAtPath(path);
  device.media().write("file", "12345");
  EXPECT_EQ(manager.attributesOfItemAtPath(path)->fileSize(), 1u);
  EXPECT_EQ(manager.attributesOfItemAtPath(path)->fileSize(), 5u);
}

TEST_F(FileManager, WithoutContentsEveryQuestionLooksAfresh) {
  device.media().write("file", "1");
  manager.contentsOfDirectoryAtPath("/var/mobile/Media");
  manager.fileExistsAtPath("/var/mobile/Media/file");
  device.media().write("file", "12345");
  EXPECT_EQ(manager.attributesOfItemAtPath("/var/mobile/Media/file")->fileSize(), 5u);
}

TEST_F(FileManager, ContentsKeepNoDescriptorBehind) {
  const auto openDescriptors = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto before = openDescriptors();
  for (int i = 0; i < 10; ++i) manager.contentsOfDirectoryAtPath("/var/mobile/Media");
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(FileManager, AFileWithoutPermissionIsNotReadable) {
  device.media().write("mine", "x");
  ASSERT_TRUE(manager.isReadableFileAtPath("/var/mobile/Media/mine"));
  ASSERT_EQ(chmod((device.media() / "mine").c_str(), 0), 0);
  ASSERT_EQ(chmod(device.media().path().c_str(), 0755), 0);
  const auto user = geteuid();
  if (user == 0) {  // root may read everything
    ASSERT_EQ(seteuid(65534), 0);
  }
  EXPECT_FALSE(manager.isReadableFileAtPath("/var/mobile/Media/mine"));
  ASSERT_EQ(seteuid(user), 0);
}

TEST_F(FileManager, CreatesAFolderWithThoseOnTheWay) {
  EXPECT_TRUE(
      manager.createDirectoryAtPathWithIntermediateDirectories("/var/mobile/Media/Quaverly/tmp/a/b/"));
  EXPECT_TRUE(std::filesystem::is_directory(device.temporary() / "tmp/a/b"));
}

TEST_F(FileManager, CreatingAFolderThatIsThereIsNoError) {
  for (int i = 0; i < 2; ++i) {
    Ref<NSError> error;
    EXPECT_TRUE(
        manager.createDirectoryAtPathWithIntermediateDirectories("/var/mobile/Media/Quaverly/tmp/", &error));
    EXPECT_FALSE(error);
  }
  EXPECT_TRUE(manager.createDirectoryAtPathWithIntermediateDirectories("/var/mobile"));
}

TEST_F(FileManager, AReadOnlyMountRefusesNewFolders) {
  Ref<NSError> error;
  EXPECT_FALSE(manager.createDirectoryAtPathWithIntermediateDirectories("/var/mobile/Media/new", &error));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain(), "NSCocoaErrorDomain");
  EXPECT_EQ(error->code(), 642);
  EXPECT_EQ(error->localizedDescription(),
            "\"/var/mobile/Media/new\" could not be created: Read-only file system");
  EXPECT_THAT(namesIn("/var/mobile/Media"), IsEmpty());
}

TEST_F(FileManager, AFileInTheWayOfAFolderIsAnError) {
  device.temporary().write("tmp/file", "x");
  Ref<NSError> error;
  for (const char* path : {"/var/mobile/Media/Quaverly/tmp/file", "/var/mobile/Media/Quaverly/tmp/file/a"}) {
    EXPECT_FALSE(manager.createDirectoryAtPathWithIntermediateDirectories(path, &error)) << path;
    EXPECT_TRUE(error);
  }
  EXPECT_EQ(test::contentsOf(device.temporary() / "tmp/file"), "x");
}

TEST_F(FileManager, NoFolderIsCreatedOutsideTheMounts) {
  EXPECT_FALSE(manager.createDirectoryAtPathWithIntermediateDirectories("/var/other"));
  EXPECT_FALSE(manager.createDirectoryAtPathWithIntermediateDirectories("/etc/quaverly"));
}

TEST_F(FileManager, RemovesFilesFoldersAndLinksButNotWhatLinksLeadTo) {
  device.temporary().write("tmp/folder/file", "x");
  device.temporary().write("tmp/target", "x");
  std::filesystem::create_symlink("target", device.temporary() / "tmp/link");
  EXPECT_TRUE(manager.removeItemAtPath("/var/mobile/Media/Quaverly/tmp/folder"));
  EXPECT_TRUE(manager.removeItemAtPath("/var/mobile/Media/Quaverly/tmp/link"));
  EXPECT_THAT(namesIn("/var/mobile/Media/Quaverly/tmp"), ElementsAre("target"));
}

TEST_F(FileManager, RemovingWhatIsNotThereOrReadOnlyFails) {
  device.temporary().makeFolder("tmp");
  device.media().write("song.mp3", "x");
  Ref<NSError> error;
  EXPECT_FALSE(manager.removeItemAtPath("/var/mobile/Media/Quaverly/tmp/none", &error));
  EXPECT_EQ(error->code(), 4);
  EXPECT_FALSE(manager.removeItemAtPath("/var/mobile/Media/song.mp3", &error));
  EXPECT_EQ(error->code(), 642);
  EXPECT_FALSE(manager.removeItemAtPath("/etc/passwd", &error));
  EXPECT_EQ(error->code(), 4);
  EXPECT_EQ(test::contentsOf(device.media() / "song.mp3"), "x");
}

}  // namespace
}  // namespace quaverly
