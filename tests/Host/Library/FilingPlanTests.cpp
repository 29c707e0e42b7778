#include "Host/Library/FilingPlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "Host/Library/FileNames.h"
#include "Support/TemporaryFolder.h"

namespace quaverly::library {
namespace {

using testing::HasSubstr;

class FilingPlanTest : public testing::Test {
 protected:
  FilingPlan planned(const SongTags& tags, const std::string& source = "/media/source name.mp3",
                     AudioKind kind = AudioKind::mpeg) {
    const FilingPlanner planner(_library, _catalogue);
    auto plan = planner.plan(offer(tags, source, kind));
    EXPECT_TRUE(plan);
    return *std::move(plan);
  }
  static SongOffer offer(const SongTags& tags, const std::string& source, AudioKind kind) {
    SongOffer offer{};
    offer.sourcePath = source;
    offer.file.kind = kind;
    offer.wanted = tags;
    offer.after = tags;
    return offer;
  }
  std::string relative(const SongTags& tags, const std::string& source = "/media/source name.mp3",
                       AudioKind kind = AudioKind::mpeg) {
    return planned(tags, source, kind).path.substr(_library.size() + 1);
  }

  quaverly::test::TemporaryFolder _folder;
  std::string _library = _folder / "music";
  Catalogue _catalogue = *Catalogue::open(_folder / "data");
};

struct Case {
  SongTags tags;
  const char* path;
};

TEST_F(FilingPlanTest, NamesASongByItsTags) {
  const Case cases[] = {
      {{.title = "Title", .artist = "Artist", .album = "Album", .trackNumber = 7, .year = 1999},
       "Artist/Album/07 Title.mp3"},
      {{.title = "Title", .artist = "Artist", .album = "Album"}, "Artist/Album/Title.mp3"},
      {{.title = "Title", .artist = "Artist", .album = "Album", .trackNumber = 112},
       "Artist/Album/112 Title.mp3"},
      {{.title = "Title", .artist = "Artist", .album = "Album", .trackNumber = -1}, "Artist/Album/Title.mp3"},
      {{}, "Unknown Artist/Unknown Album/source name.mp3"},
      {{.trackNumber = 3}, "Unknown Artist/Unknown Album/03 source name.mp3"},
      {{.title = "...", .artist = " ", .album = "\t"}, "Unknown Artist/_/_.mp3"},
      {{.title = " ", .artist = ".", .album = "."}, "_/_/Unknown Title.mp3"},
      {{.title = "CON", .artist = "nul", .album = "AUX"}, "_nul/_AUX/_CON.mp3"},
      {{.title = "CON", .artist = "a", .album = "b", .trackNumber = 1}, "a/b/01 CON.mp3"},
      {{.title = "../../up", .artist = "..", .album = "../x"}, "_/_._x/_._.._up.mp3"},
      {{.title = "A/B: C?", .artist = "AC/DC", .album = "What?"}, "AC_DC/What_/A_B_ C_.mp3"},
  };
  for (const auto& [tags, path] : cases) EXPECT_EQ(relative(tags), path);
}

TEST_F(FilingPlanTest, TheEndingIsTheContents) {
  EXPECT_EQ(relative({.title = "T"}, "/x.mp3", AudioKind::flac), "Unknown Artist/Unknown Album/T.flac");
  EXPECT_EQ(relative({.title = "T"}, "/x.mp3", AudioKind::mp4), "Unknown Artist/Unknown Album/T.m4a");
  EXPECT_EQ(relative({}, "/x.mp3", AudioKind::oggOpus), "Unknown Artist/Unknown Album/x.opus");
  EXPECT_EQ(relative({}, "/Vol. 1.mp3"), "Unknown Artist/Unknown Album/Vol. 1.mp3");
  EXPECT_EQ(relative({}, "/no ending"), "Unknown Artist/Unknown Album/no ending.mp3");
}

TEST_F(FilingPlanTest, LongNamesFitWithTheirNumber) {
  const std::string longText(400, 'x');
  const SongTags tags{.title = longText, .artist = longText, .album = longText};
  const auto first = planned(tags);
  EXPECT_EQ(first.artistFolder.size(), 255U);
  EXPECT_EQ(first.fileName, std::string(251, 'x') + ".mp3");
  _folder.write("music/" + first.path.substr(_library.size() + 1), "taken");
  const auto second = planned(tags);
  EXPECT_EQ(second.fileName, std::string(247, 'x') + " (2).mp3");
  EXPECT_EQ(second.namesake, first.path);
}

TEST_F(FilingPlanTest, ALibraryThatLiesDeepGetsShorterNames) {
  const std::string longText(400, 'x');
  _library += "/" + std::string(3500, 'd');
  const auto plan = planned({.title = longText, .artist = longText, .album = longText});
  EXPECT_LT(plan.path.size(), 4096U);
  EXPECT_GT(plan.fileName.size(), 100U);
  _library += std::string(600, 'd');
  const auto none = FilingPlanner(_library, _catalogue).plan(offer({}, "/x.mp3", AudioKind::mpeg));
  ASSERT_FALSE(none);
  EXPECT_THAT(none.failure().reason, HasSubstr("too long"));
}

TEST_F(FilingPlanTest, FoldersThatAreThereAreUsedWhateverTheirCase) {
  _folder.makeFolder("music/The ARTIST/\u00c9tudes");
  EXPECT_EQ(relative({.title = "T", .artist = "The Artist", .album = "e\u0301tudes"}),
            "The ARTIST/\u00c9tudes/T.mp3");
  _folder.makeFolder("music/The Artist");
  EXPECT_EQ(relative({.title = "T", .artist = "The Artist", .album = "Other"}), "The Artist/Other/T.mp3");
}

TEST_F(FilingPlanTest, NumbersGoOnWhereTheyAreFree) {
  for (const auto* name : {"T.mp3", "t (2).MP3", "T (4).mp3"}) {
    _folder.write(std::string("music/Unknown Artist/Unknown Album/") + name, "taken");
  }
  EXPECT_EQ(relative({.title = "T"}), "Unknown Artist/Unknown Album/T (3).mp3");
}

TEST_F(FilingPlanTest, PromisedSongsCountAsFiled) {
  FilingPlanner planner(_library, _catalogue);
  const auto one = offer({.title = "T", .artist = "A"}, "/x.mp3", AudioKind::mpeg);
  auto other = offer({.title = "t", .artist = "a"}, "/y.mp3", AudioKind::mpeg);
  other.audio.bytes[0] = 1;
  const auto first = *planner.plan(one);
  planner.promise(one, first);
  EXPECT_EQ(planner.plan(one)->duplicateOf, first.path);
  const auto second = *planner.plan(other);
  EXPECT_FALSE(second.duplicateOf);
  EXPECT_EQ(second.path, _library + "/A/Unknown Album/t (2).mp3");
  EXPECT_EQ(second.namesake, first.path);
}

TEST_F(FilingPlanTest, SongsOfAnotherLibraryAreNoDuplicates) {
  const auto mine = offer({.title = "T"}, "/x.mp3", AudioKind::mpeg);
  DownloadRecord record;
  record.id = *_catalogue.add(record);
  SongRecord song;
  song.path = _folder.write("elsewhere/T.mp3", "song");
  song.tags = mine.after;
  ASSERT_FALSE(_catalogue.file(record, song));
  EXPECT_FALSE(FilingPlanner(_library, _catalogue).plan(mine)->duplicateOf);
  EXPECT_EQ(FilingPlanner(_folder / "elsewhere", _catalogue).plan(mine)->duplicateOf, song.path);
}

}  // namespace
}  // namespace quaverly::library
