// Imports that are killed, or whose system calls fail, at every single step: afterwards the library holds the
// whole song or nothing, the catalogue says the same, and the next start goes on.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "Host/Library/Catalogue.h"
#include "Host/Library/ServiceUnderTest.h"
#include "Support/Command.h"
#include "Support/NetworkNamespace.h"
#include "Support/TemporaryFolder.h"

namespace quaverly::library {
namespace {

namespace fs = std::filesystem;
using test::contentsOf;
using test::quoted;

struct Fault {
  const char* name;  // of the test
  const char* call;
  const char* what;  // what strace does instead of the call
};

class FaultTest : public testing::TestWithParam<Fault> {
 protected:
  FaultTest() {
    test::enterOwnNetwork();
    // The catalogue is there before the first fault, with a song in it.
    const auto first = _folder.write("first.mp3", songBytes(1));
    test::run(driver(first));
    fs::rename(_data, _folder / "data before");
    fs::rename(_library, _folder / "library before");
  }

  std::string driver(const std::string& song = "") const {
    const auto arguments = quoted(_data) + " " + quoted(_library) + (song.empty() ? "" : " " + quoted(song));
    return "timeout 20 " + quoted(IMPORT_DRIVER) + " " + arguments;
  }

  /// Imports the song with a fault at the step of that number. False when there was no such step.
  bool importWithFault(unsigned step) const {
    fs::remove_all(_data);
    fs::remove_all(_library);
    fs::copy(_folder / "data before", _data, fs::copy_options::recursive);
    fs::copy(_folder / "library before", _library, fs::copy_options::recursive);
    const auto log = _folder / "log";
    std::ostringstream command;
    command << "strace -f -o " << quoted(log);
    for (const auto& path : journal()) command << " -P " << quoted(path);
    command << " -e trace=" << GetParam().call << " -e inject=" << GetParam().call << ":" << GetParam().what
            << ":when=" << step << " " << driver(_song) << " > " << quoted(_folder / "said")
            << " 2>&1 || true";
    test::run(command.str());
    const auto calls = contentsOf(log);
    return calls.find("INJECTED") != std::string::npos || calls.find("SIGKILL") != std::string::npos;
  }

  /// The files that an import writes, in the library and in the data folder.
  std::vector<std::string> journal() const {
    std::vector<std::string> paths = {_data, _library};
    for (const auto* name :
         {"/lock", "/catalogue.sqlite", "/catalogue.sqlite-wal", "/catalogue.sqlite-shm"}) {
      paths.push_back(_data + name);
    }
    for (const auto* name :
         {"/.quaverly", "/.quaverly/1.part", "/Artist", "/Artist/Album", "/Artist/Album/song.mp3"}) {
      paths.push_back(_library + name);
    }
    return paths;
  }

  /// The songs that a player would find.
  std::vector<std::string> visibleSongs() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(_library)) {
      if (entry.is_regular_file() && entry.path().extension() == ".mp3")
        names.push_back(entry.path().filename());
    }
    std::ranges::sort(names);
    return names;
  }
  bool isFiled() const { return fs::exists(_library + "/Artist/Album/song.mp3"); }

  void expectWholeSongsOnly() const {
    const auto songs = visibleSongs();
    for (const auto& name : songs) {
      const unsigned seed = name == "song.mp3" ? 2 : 1;
      EXPECT_THAT(contentsOf(_library + "/Artist/Album/" + name), testing::EndsWith(songBytes(seed))) << name;
    }
    EXPECT_THAT(songs, testing::AnyOf(testing::ElementsAre("first.mp3"),
                                      testing::ElementsAre("first.mp3", "song.mp3")));
  }

  /// Every download has ended, and what is filed is there.
  void expectAgreement() const {
    auto catalogue = *Catalogue::open(_data);
    for (const auto& record : *catalogue.downloads()) {
      EXPECT_TRUE(isFinal(record.state)) << nameOf(record.state);
      EXPECT_EQ(record.state == DownloadState::failed, record.libraryPath.empty());
      EXPECT_FALSE(record.state == DownloadState::failed && record.reason.empty());
    }
    const auto songs = *catalogue.songs();
    EXPECT_EQ(songs.size(), isFiled() ? 2U : 1U);
    for (const auto& song : songs) EXPECT_EQ(fs::file_size(song.path), song.size);
  }

  test::TemporaryFolder _folder;
  std::string _data = _folder / "data";
  std::string _library = _folder / "library";
  std::string _song = _folder.write("song.mp3", songBytes(2));
};

TEST_P(FaultTest, LeavesTheWholeSongOrNothingAndTheNextStartGoesOn) {
  unsigned steps = 0;
  while (importWithFault(steps + 1)) {
    SCOPED_TRACE("step " + std::to_string(++steps) + ": " + contentsOf(_folder / "said"));
    expectWholeSongsOnly();
    test::run(driver());
    expectWholeSongsOnly();
    expectAgreement();
    test::run(driver(_song));
    EXPECT_TRUE(isFiled());
    expectWholeSongsOnly();
    expectAgreement();
    EXPECT_FALSE(fs::exists(_library + "/.quaverly"));
    if (HasFailure()) break;
  }
  EXPECT_GT(steps, 0U) << "nothing was tried";
  EXPECT_EQ(contentsOf(_song), songBytes(2));
}

constexpr Fault faults[] = {
    {"KilledAtOpenat", "openat", "signal=KILL"},
    {"KilledAtMkdir", "mkdir", "signal=KILL"},
    {"KilledAtFallocate", "fallocate", "signal=KILL"},
    {"KilledAtWrite", "write", "signal=KILL"},
    {"KilledAtPwrite", "pwrite64", "signal=KILL"},
    {"KilledAtFdatasync", "fdatasync", "signal=KILL"},
    {"KilledAtFsync", "fsync", "signal=KILL"},
    {"KilledAtRename", "renameat2", "signal=KILL"},
    {"KilledAtRmdir", "rmdir", "signal=KILL"},
    {"NoRoomToReserve", "fallocate", "error=ENOSPC"},
    {"CannotReserve", "fallocate", "error=EOPNOTSUPP"},
    {"NoRoomToWrite", "write", "error=ENOSPC"},
    {"NoRoomInTheCatalogue", "pwrite64", "error=ENOSPC"},
    {"BrokenFlush", "fdatasync", "error=EIO"},
    {"BrokenFolderFlush", "fsync", "error=EIO"},
    {"NoFolders", "mkdir", "error=EACCES"},
    {"BrokenRename", "renameat2", "error=EIO"},
    {"RenamesMayReplace", "renameat2", "error=EINVAL"},
    {"RenamesMayReplaceAndThereAreNoLinks", "renameat2,link", "error=EINVAL"},
    {"BrokenReading", "pread64", "error=EIO"},
};

INSTANTIATE_TEST_SUITE_P(AtEveryStep, FaultTest, testing::ValuesIn(faults),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace quaverly::library
