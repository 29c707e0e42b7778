#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "Controllers/ImportAudioController.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/UIKit/UIImage.h"
#include "Support/AudioFiles.h"
#include "Support/Command.h"
#include "Support/TagBytes.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using namespace std::string_literals;
using test::pictureFrame;
using test::tag;
using test::textFrame;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* artworkURL =
    "file://localhost/private/var/mobile/Media/Quaverly/tmp/current_album_image_local.jpg";
constexpr const char* stagedName = "tmp/current_album_image_local.jpg";

class ImportAudioControllerReader : public testing::Test {
 protected:
  ImportAudioControllerReader() { controller->init(); }

  iTunesSongItem read(const std::string& bytes) {
    device.media().write("song.mp3", bytes);
    return controller->songItemFromPath("/var/mobile/Media/song.mp3");
  }
  iTunesSongItem readItems(const std::vector<AVMetadataItem>& items) {
    iTunesSongItem song;
    for (const auto& item : items) controller->readMetadataItemIntoSongItem(item, song);
    return song;
  }
  static AVMetadataItem keyless(std::string text) { return {std::nullopt, std::move(text)}; }
  std::string staged() { return test::contentsOf(device.temporary() / stagedName); }
  std::string jpeg(const std::string& size) {
    return test::contentsOf(test::makePicture(device.bundle(), "cover.jpg", size));
  }

  test::TestDevice device;
  Ref<ImportAudioController> controller = make<ImportAudioController>();
};

iTunesSongItem songWith(void (iTunesSongItem::*setter)(iTunesSongItem::Text), const std::string& text) {
  iTunesSongItem song;
  (song.*setter)(text);
  return song;
}

TEST_F(ImportAudioControllerReader, FillsTheFieldsFromAFile) {
  const auto frames = textFrame(3, "TIT2", "Title") + textFrame(3, "TPE1", "Artist") +
                      textFrame(3, "TALB", "Album") + textFrame(3, "TCON", "Ambient") +
                      textFrame(3, "TRCK", "07/12") + textFrame(3, "TYER", "2014");
  iTunesSongItem expected;
  expected.setTitle("Title");
  expected.setArtist("Artist");
  expected.setAlbum("Album");
  expected.setGenre("Ambient");
  expected.setIndexInCollection("07");
  expected.setReleaseYear("2014");
  EXPECT_EQ(read(tag(3, frames)), expected);
}

TEST_F(ImportAudioControllerReader, FieldsWithoutTagsStayAbsent) {
  EXPECT_EQ(read(tag(3, textFrame(3, "TIT2", "Title"))), songWith(&iTunesSongItem::setTitle, "Title"));
}

TEST_F(ImportAudioControllerReader, WhatCannotBeReadGivesAnEmptyRecord) {
  std::vector<std::string> lines;
  setLogSink([&](std::string_view line) { lines.emplace_back(line); });
  EXPECT_EQ(controller->songItemFromPath("/var/mobile/Media/missing.mp3"), iTunesSongItem());
  EXPECT_EQ(controller->songItemFromPath("/etc/passwd"), iTunesSongItem());
  EXPECT_EQ(controller->songItemFromPath("/var/mobile/Media"), iTunesSongItem());
  EXPECT_EQ(controller->songItemFromPath(""), iTunesSongItem());
  EXPECT_EQ(read("A text.\n"), iTunesSongItem());
  EXPECT_EQ(read(""), iTunesSongItem());
  setLogSink(nullptr);
  EXPECT_THAT(lines, ElementsAre());
}

TEST_F(ImportAudioControllerReader, ReadsPathsOfAnyCharacters) {
  device.media().write("a b/ü%41?#;x.mp3", tag(3, textFrame(3, "TIT2", "Title")));
  EXPECT_EQ(controller->songItemFromPath("/var/mobile/Media/a b/ü%41?#;x.mp3").title(), "Title");
}

TEST_F(ImportAudioControllerReader, TextWithoutAKeyGoesByItsLength) {
  const std::vector<std::pair<std::string, iTunesSongItem>> cases{
      {"2014", songWith(&iTunesSongItem::setReleaseYear, "2014")},
      {"Rock", songWith(&iTunesSongItem::setReleaseYear, "Rock")},
      {"7", songWith(&iTunesSongItem::setIndexInCollection, "7")},
      {"07", songWith(&iTunesSongItem::setIndexInCollection, "07")},
      {"Pop", songWith(&iTunesSongItem::setIndexInCollection, "Pop")},
      {"", songWith(&iTunesSongItem::setIndexInCollection, "")},
      {"Ambient", songWith(&iTunesSongItem::setGenre, "Ambient")},
      {"Blues", songWith(&iTunesSongItem::setGenre, "Blues")},
      {"😀😀", songWith(&iTunesSongItem::setReleaseYear, "😀😀")},
      {"äöüß", songWith(&iTunesSongItem::setReleaseYear, "äöüß")},
  };
  for (const auto& [text, song] : cases) EXPECT_EQ(readItems({keyless(text)}), song) << text;
}

TEST_F(ImportAudioControllerReader, GenresOfFourCharactersAreYears) {
  EXPECT_EQ(read(tag(3, textFrame(3, "TCON", "(17)"))), songWith(&iTunesSongItem::setReleaseYear, "Rock"));
  const auto song = read(tag(3, textFrame(3, "TYER", "2014") + textFrame(3, "TCON", "(17)")));
  EXPECT_EQ(song, songWith(&iTunesSongItem::setReleaseYear, "2014")) << "the year itself comes last";
}

TEST_F(ImportAudioControllerReader, TheLastItemOfAFieldWins) {
  EXPECT_EQ(readItems({{"title", "One"}, {"title", "Two"}}).title(), "Two");
  EXPECT_EQ(readItems({keyless("Ambient"), keyless("A long comment")}).genre(), "A long comment");
}

TEST_F(ImportAudioControllerReader, ALaterFormatWinsOverAnEarlierOne) {
  const auto ape = test::apeTag(test::apeItem("Title", "Early") + test::apeItem("Artist", "Artist"), 2);
  const auto song = read(tag(3, textFrame(3, "TIT2", "Late")) + test::mpegFrames() + ape);
  EXPECT_EQ(song.title(), "Late");
  EXPECT_EQ(song.artist(), "Artist");
}

TEST_F(ImportAudioControllerReader, OtherKeysAndOtherValuesAreIgnored) {
  EXPECT_EQ(readItems({{"creator", "A"},
                       {"type", "2014"},
                       {"", "Ambient"},
                       {std::nullopt, NSData("2014")},
                       {std::nullopt, AVMetadataItem::Dictionary{{"data", NSData("2014")}}}}),
            iTunesSongItem());
}

TEST_F(ImportAudioControllerReader, ValuesWithAKeyAreStoredWhateverTheirType) {
  EXPECT_EQ(readItems({{"title", NSData("Bytes")}}).title(), "Bytes");
}

TEST_F(ImportAudioControllerReader, ArtworkIsStagedAsJPEG) {
  for (const auto& item :
       {AVMetadataItem("artwork", NSData(jpeg("30x20"))),
        AVMetadataItem("artwork", AVMetadataItem::Dictionary{{"data", NSData(jpeg("30x20"))}})}) {
    std::filesystem::remove_all(device.temporary() / "tmp");
    const auto song = readItems({item});
    EXPECT_EQ(song.artworkLow(), artworkURL);
    EXPECT_EQ(song.artworkMedium(), artworkURL);
    EXPECT_EQ(song.artworkHigh(), artworkURL);
    EXPECT_TRUE(staged().starts_with("\xff\xd8\xff"));
  }
}

TEST_F(ImportAudioControllerReader, ArtworkFromAFileIsStagedAtTheHighestQuality) {
  const auto original = jpeg("30x20");
  const auto song = read(tag(3, pictureFrame(3, original)));
  EXPECT_EQ(song.artworkHigh(), artworkURL);
  const auto image = UIImage::imageWithData(NSData(std::string_view(original)));
  EXPECT_EQ(staged(), UIImageJPEGRepresentation(*image, 1.0)->text());
}

TEST_F(ImportAudioControllerReader, TheLastArtworkStaysAndAFrontCoverIsTheLast) {
  const auto song = read(tag(3, pictureFrame(3, jpeg("30x20"), 3) + pictureFrame(3, jpeg("50x40"), 4)));
  const auto image = UIImage::imageWithData(NSData(staged()));
  EXPECT_EQ(image->pixelSize().width, 30U);
}

TEST_F(ImportAudioControllerReader, AFileWithoutArtworkLeavesTheStagedFileAlone) {
  read(tag(3, pictureFrame(3, jpeg("30x20"))));
  const auto before = staged();
  const auto song = read(tag(3, textFrame(3, "TIT2", "Title")));
  EXPECT_EQ(song.artworkLow(), std::nullopt);
  EXPECT_EQ(song.artworkMedium(), std::nullopt);
  EXPECT_EQ(song.artworkHigh(), std::nullopt);
  EXPECT_EQ(staged(), before);
}

TEST_F(ImportAudioControllerReader, ArtworkThatIsNoPictureRemovesTheStagedFileAndIsNamedAllTheSame) {
  read(tag(3, pictureFrame(3, jpeg("30x20"))));
  for (const auto& value : std::vector<AVMetadataItem::Value>{"text", NSData("no picture"), NSData(),
                                                              AVMetadataItem::Dictionary{}}) {
    read(tag(3, pictureFrame(3, jpeg("30x20"))));
    EXPECT_EQ(readItems({{"artwork", value}}).artworkLow(), artworkURL);
    EXPECT_FALSE(std::filesystem::exists(device.temporary() / stagedName));
  }
}

TEST_F(ImportAudioControllerReader, ArtworkIsNamedEvenWhenItCannotBeWritten) {
  device->mounts.mount(test::TestDevice::temporaryPath, device.temporary().path(),
                       MountTable::Access::readOnly);
  EXPECT_EQ(readItems({{"artwork", NSData(jpeg("30x20"))}}).artworkHigh(), artworkURL);
  EXPECT_FALSE(std::filesystem::exists(device.temporary() / "current_album_image_local.jpg"));
}

TEST_F(ImportAudioControllerReader, DurationAndIdentifierAreNeverSet) {
  const auto song = read(tag(3, textFrame(3, "TLEN", "1000") + test::frame(3, "UFID", "owner\0id"s)));
  EXPECT_EQ(song, iTunesSongItem());
}

TEST_F(ImportAudioControllerReader, TheTemporaryDirectoryIsMade) {
  ASSERT_FALSE(std::filesystem::exists(device.temporary() / "tmp"));
  EXPECT_EQ(controller->quaverlyTempDirectory(), "/var/mobile/Media/Quaverly/tmp/");
  EXPECT_TRUE(std::filesystem::is_directory(device.temporary() / "tmp"));
  EXPECT_EQ(controller->quaverlyTempDirectory(), "/var/mobile/Media/Quaverly/tmp/") << "again";
}

TEST_F(ImportAudioControllerReader, ATemporaryDirectoryThatCannotBeMadeIsLogged) {
  device.temporary().write("tmp", "a file in its place");
  std::vector<std::string> lines;
  setLogSink([&](std::string_view line) { lines.emplace_back(line); });
  EXPECT_EQ(controller->quaverlyTempDirectory(), "/var/mobile/Media/Quaverly/tmp/");
  setLogSink(nullptr);
  EXPECT_THAT(lines,
              ElementsAre(testing::StartsWith(
                  "Failed to create directory \"/var/mobile/Media/Quaverly/tmp/\". Error: Error Domain=")));
}

}  // namespace
}  // namespace quaverly
