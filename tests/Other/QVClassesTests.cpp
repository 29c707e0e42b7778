#include "Other/QVClasses.h"

#include <gtest/gtest.h>

namespace quaverly {
namespace {

struct SongField {
  const char* name;
  const iTunesSongItem::Text& (iTunesSongItem::*get)() const;
  void (iTunesSongItem::*set)(iTunesSongItem::Text);
};

constexpr SongField songFields[] = {
    {"title", &iTunesSongItem::title, &iTunesSongItem::setTitle},
    {"artist", &iTunesSongItem::artist, &iTunesSongItem::setArtist},
    {"album", &iTunesSongItem::album, &iTunesSongItem::setAlbum},
    {"genre", &iTunesSongItem::genre, &iTunesSongItem::setGenre},
    {"releaseYear", &iTunesSongItem::releaseYear, &iTunesSongItem::setReleaseYear},
    {"indexInCollection", &iTunesSongItem::indexInCollection, &iTunesSongItem::setIndexInCollection},
    {"duration", &iTunesSongItem::duration, &iTunesSongItem::setDuration},
    {"ID", &iTunesSongItem::ID, &iTunesSongItem::setID},
    {"artworkLow", &iTunesSongItem::artworkLow, &iTunesSongItem::setArtworkLow},
    {"artworkMedium", &iTunesSongItem::artworkMedium, &iTunesSongItem::setArtworkMedium},
    {"artworkHigh", &iTunesSongItem::artworkHigh, &iTunesSongItem::setArtworkHigh},
};

TEST(iTunesSongItem, ANewRecordHasElevenAbsentFields) {
  const iTunesSongItem song;
  EXPECT_EQ(std::size(songFields), 11u);
  for (const auto& field : songFields) EXPECT_EQ((song.*field.get)(), std::nullopt) << field.name;
}

TEST(iTunesSongItem, EachFieldKeepsItsOwnText) {
  iTunesSongItem song;
  for (const auto& field : songFields) (song.*field.set)(std::string("the ") + field.name);
  for (const auto& field : songFields) EXPECT_EQ((song.*field.get)(), std::string("the ") + field.name);
}

TEST(iTunesSongItem, SettingAbsentClearsAFieldAndAnEmptyTextIsNotAbsent) {
  for (const auto& field : songFields) {
    iTunesSongItem song;
    (song.*field.set)("");
    EXPECT_EQ((song.*field.get)(), "") << field.name;
    (song.*field.set)(std::nullopt);
    EXPECT_EQ((song.*field.get)(), std::nullopt) << field.name;
  }
}

TEST(iTunesSongItem, ChangingATextAfterwardsLeavesTheFieldUnchanged) {
  for (const auto& field : songFields) {
    iTunesSongItem song;
    std::string text = "a text that is long enough to live on the heap";
    (song.*field.set)(text);
    text[0] = 'X';
    EXPECT_EQ((song.*field.get)(), "a text that is long enough to live on the heap") << field.name;
  }
}

TEST(iTunesSongItem, NumbersTravelAsTheyWereWritten) {
  iTunesSongItem song;
  song.setIndexInCollection("07");
  song.setReleaseYear("MMXIV");
  EXPECT_EQ(song.indexInCollection(), "07");
  EXPECT_EQ(song.releaseYear(), "MMXIV");
}

TEST(iTunesSongItem, ACopyIsARecordOfItsOwn) {
  iTunesSongItem song;
  song.setTitle("one");
  iTunesSongItem copy = song;
  copy.setTitle("two");
  EXPECT_EQ(song.title(), "one");
  EXPECT_EQ(copy.artist(), std::nullopt);
}

TEST(FileItem, ANewRecordIsNoDirectoryNoAudioFileAndHasNoTexts) {
  const FileItem item;
  EXPECT_FALSE(item.isDirectory());
  EXPECT_FALSE(item.isAudioFile());
  EXPECT_EQ(item.path(), std::nullopt);
  EXPECT_EQ(item.size(), std::nullopt);
  EXPECT_EQ(item.date(), std::nullopt);
}

TEST(FileItem, KeepsWhatItIsGiven) {
  FileItem item;
  item.setIsDirectory(true);
  item.setIsAudioFile(true);
  item.setPath("/a\xFF");
  item.setSize("1 KB");
  item.setDate("01/01/1970 12:00 AM");
  EXPECT_TRUE(item.isDirectory());
  EXPECT_TRUE(item.isAudioFile());
  EXPECT_EQ(item.path(), "/a\xFF");
  EXPECT_EQ(item.size(), "1 KB");
  EXPECT_EQ(item.date(), "01/01/1970 12:00 AM");
  item.setSize(std::nullopt);
  EXPECT_EQ(item.size(), std::nullopt);
}

TEST(FileItem, ChangingATextAfterwardsLeavesThePathUnchanged) {
  FileItem item;
  std::string path = "/var/mobile/Media/a rather long name.mp3";
  item.setPath(path);
  path.clear();
  EXPECT_EQ(item.path(), "/var/mobile/Media/a rather long name.mp3");
}

}  // namespace
}  // namespace quaverly
