// Libraries and data folders on disks that are full, read-only, elsewhere or somebody else's.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "Host/Library/ServiceUnderTest.h"
#include "Support/NetworkNamespace.h"
#include "Support/TagBytes.h"

namespace quaverly::library {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Mounts of this process's own, from before it has a second thread.
struct OwnMounts {
  OwnMounts() {
    test::enterOwnNetwork();  // with the rights that mounting takes
    if (unshare(CLONE_NEWNS) != 0) throw std::runtime_error("no mount namespace");
    // Refused where the root is no mount of its own, in a chroot; then what is mounted may show outside until
    // the test takes it down.
    mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
  }
};

class StorageTest : public testing::Test {
 protected:
  StorageTest() { under.device().media().write("song.mp3", song); }
  void TearDown() override {
    for (const auto& path : mounted) umount2(path.c_str(), MNT_DETACH);
  }

  void mountSmallDisk(const std::string& path, const std::string& size) {
    fs::create_directories(path);
    mounted.push_back(path);
    ASSERT_EQ(mount("tmpfs", path.c_str(), "tmpfs", 0, ("size=" + size).c_str()), 0);
  }
  void setReadOnly(const std::string& path) {
    mounted.push_back(path);
    ASSERT_EQ(mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr), 0);
    ASSERT_EQ(mount(nullptr, path.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
  }
  DownloadRecord import() { return under.import({"/var/mobile/Media/song.mp3", {.title = "Title"}}); }
  void retry(DownloadID id) {
    const size_t before = under.recorder().ended.size();
    EXPECT_FALSE(under.service().retry(id));
    under.runUntilEnded(before + 1);
  }

  OwnMounts ownMounts;
  std::vector<std::string> mounted;
  ServiceUnderTest under;
  ImportServer server;
  const std::string song = songBytes(1, test::tag(4, test::frame(4, "PRIV", std::string(300'000, 'p'))));
};

TEST_F(StorageTest, AFullDiskIsAFailureThatLeavesNothing) {
  mountSmallDisk(under.settings().libraryFolder, "128k");
  const auto record = import();
  EXPECT_EQ(record.state, DownloadState::failed);
  EXPECT_EQ(record.reason,
            "The song cannot be stored in " + under.settings().libraryFolder + ": the disk is full.");
  EXPECT_THAT(under.allFiles(), IsEmpty());
  ASSERT_EQ(mount(nullptr, under.settings().libraryFolder.c_str(), nullptr, MS_REMOUNT, "size=1m"), 0);
  retry(record.id);
  EXPECT_EQ(under.recorder().ended.back().state, DownloadState::filed)
      << under.recorder().ended.back().reason;
}

TEST_F(StorageTest, AReadOnlyLibraryIsAFailureAndWorksWhenItIsWritable) {
  fs::create_directories(under.settings().libraryFolder);
  setReadOnly(under.settings().libraryFolder);
  const auto record = import();
  EXPECT_EQ(record.state, DownloadState::failed);
  EXPECT_THAT(record.reason, HasSubstr("the disk is read-only"));
  ASSERT_EQ(umount(under.settings().libraryFolder.c_str()), 0);
  retry(record.id);
  EXPECT_EQ(under.recorder().ended.back().state, DownloadState::filed);
}

TEST_F(StorageTest, ALibraryOnAnotherFileSystemThanTheDataIsAsGood) {
  mountSmallDisk(under.settings().libraryFolder, "2m");
  EXPECT_EQ(import().state, DownloadState::filed);
  EXPECT_THAT(under.allFiles(), ElementsAre("Unknown Artist/Unknown Album/Title.mp3"));
}

TEST_F(StorageTest, AFullDiskUnderTheCatalogueIsAFailureThatIsTold) {
  under.end();
  mountSmallDisk(under.settings().dataFolder, "144k");
  under.restart();
  under.device().temporary().write("tmp/cover.jpg", "\xff\xd8\xff\xe0" + std::string(200'000, 'c'));
  const auto record = under.import({"/var/mobile/Media/song.mp3",
                                    {.title = "Title"},
                                    "file://localhost/private/var/mobile/Media/Quaverly/tmp/cover.jpg"});
  EXPECT_EQ(record.state, DownloadState::failed);
  EXPECT_EQ(record.id, 0);
  EXPECT_EQ(record.reason, "The cover cannot be kept in the data folder: the disk is full.");
  EXPECT_TRUE(fs::is_empty(under.settings().dataFolder + "/artwork"));
  ServiceUnderTest::runUntil([&] { return under.recorder().idle == 1; });
}

TEST_F(StorageTest, AMissingLibraryFolderIsMade) {
  EXPECT_FALSE(fs::exists(under.settings().libraryFolder));
  EXPECT_EQ(import().state, DownloadState::filed);
}

TEST_F(StorageTest, ALibraryThatMayNotBeWrittenIsAFailure) {
  // Even root may not write into the kernel's own folders.
  under.end();
  const auto service =
      DownloadService::open({under.settings().dataFolder, "/proc/self/music"}, under.outsideFiles(), server);
  (*service)->addObserver(&under.recorder());
  (*service)->addDownloads({ServiceUnderTest::download({"/var/mobile/Media/song.mp3", {.title = "Title"}})});
  under.runUntilEnded(1);
  EXPECT_EQ(under.recorder().ended[0].state, DownloadState::failed);
  EXPECT_EQ(under.recorder().ended[0].reason,
            "The song cannot be stored in /proc/self/music: it is not there.");
}

}  // namespace
}  // namespace quaverly::library
