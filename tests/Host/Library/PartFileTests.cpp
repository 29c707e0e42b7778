#include "Host/Library/PartFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "Support/TemporaryFolder.h"

namespace quaverly::library {
namespace {

namespace fs = std::filesystem;
using quaverly::test::contentsOf;
using Placing = PartFile::Placing;

std::span<const std::byte> bytesOf(const std::string& text) {
  return std::as_bytes(std::span(text));
}

class PartFileTest : public testing::Test {
 protected:
  PartFile made() const {
    auto part = PartFile::create(_library);
    EXPECT_TRUE(part) << part.failure().reason;
    return *std::move(part);
  }
  std::vector<std::string> parts() const {
    std::vector<std::string> names;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(_library + "/.quaverly", none)) {
      names.push_back(entry.path().filename());
    }
    return names;
  }

  quaverly::test::TemporaryFolder _folder;
  std::string _library = _folder / "music/library";
};

TEST_F(PartFileTest, HasAHiddenPlaceAndNoEndingOfAudio) {
  const auto part = made();
  EXPECT_EQ(part.path(), _library + "/.quaverly/1.part");
}

TEST_F(PartFileTest, GoesUnlessItIsPlaced) {
  { const auto part = made(); }
  EXPECT_THAT(parts(), testing::IsEmpty());
}

TEST_F(PartFileTest, HoldsWhatWasAppendedInPiecesOfAnySize) {
  std::string all;
  auto part = made();
  for (const size_t size : {1, 16'384, 262'144, 262'143, 262'145, 0, 700'000, 5}) {
    const std::string piece(size, static_cast<char>('a' + all.size() % 26));
    all += piece;
    ASSERT_FALSE(part.append(bytesOf(piece)));
  }
  ASSERT_FALSE(part.finish());
  EXPECT_EQ(part.length(), all.size());
  EXPECT_EQ(contentsOf(part.path()), all);
}

TEST_F(PartFileTest, IsNotLongerThanWhatWasAppended) {
  auto part = made();
  ASSERT_FALSE(part.reserve(1'000'000));
  ASSERT_FALSE(part.append(bytesOf("short")));
  ASSERT_FALSE(part.finish());
  ASSERT_FALSE(part.flush());
  EXPECT_EQ(contentsOf(part.path()), "short");
}

TEST_F(PartFileTest, TakesAFreeNameOnly) {
  const std::string taken = _folder.write("music/library/taken.mp3", "old");
  auto part = made();
  ASSERT_FALSE(part.append(bytesOf("new")));
  ASSERT_FALSE(part.finish());
  EXPECT_EQ(*part.placeAs(taken), Placing::nameTaken);
  EXPECT_EQ(contentsOf(taken), "old");
  EXPECT_EQ(*part.placeAs(_library + "/free.mp3"), Placing::placed);
  EXPECT_EQ(contentsOf(_library + "/free.mp3"), "new");
  EXPECT_THAT(parts(), testing::IsEmpty());
}

TEST_F(PartFileTest, ANameIsTakenByALinkThatLeadsNowhereToo) {
  auto part = made();
  fs::create_symlink("/nowhere", _library + "/link.mp3");
  EXPECT_EQ(*part.placeAs(_library + "/link.mp3"), Placing::nameTaken);
}

TEST_F(PartFileTest, IsAsOpenToOthersAsAnyFileOfTheUser) {
  umask(027);
  auto part = made();
  ASSERT_TRUE(part.placeAs(_library + "/song.mp3"));
  struct stat attributes {};
  ASSERT_EQ(stat((_library + "/song.mp3").c_str(), &attributes), 0);
  EXPECT_EQ(attributes.st_mode & 0777U, 0640U);
}

TEST_F(PartFileTest, OnlyAbandonedOnesAreRemoved) {
  const auto alive = made();
  _folder.write("music/library/.quaverly/7.part", "abandoned");
  _folder.write("music/library/.quaverly/notes.txt", "not ours");
  PartFile::removeAbandoned(_library);
  EXPECT_THAT(parts(), testing::UnorderedElementsAre("1.part", "notes.txt"));
}

TEST_F(PartFileTest, TheirFolderGoesWithTheLastOne) {
  { const auto part = made(); }
  PartFile::removeAbandoned(_library);
  EXPECT_FALSE(fs::exists(_library + "/.quaverly"));
  EXPECT_TRUE(fs::exists(_library));
}

TEST_F(PartFileTest, SaysWhyTheLibraryCannotBeUsed) {
  _folder.write("music", "a file in the way");
  const auto part = PartFile::create(_library);
  ASSERT_FALSE(part);
  EXPECT_EQ(part.failure().reason,
            "The song cannot be stored in " + _library + ": a file is in the way of a folder.");
}

}  // namespace
}  // namespace quaverly::library
