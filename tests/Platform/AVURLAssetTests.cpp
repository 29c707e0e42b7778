#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "Platform/AVFoundation/AVURLAsset.h"
#include "Support/AudioFiles.h"
#include "Support/Command.h"
#include "Support/TagBytes.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using namespace std::string_literals;
using test::contentsOf;
using test::pictureFrame;
using test::textFrame;

std::string textOf(const AVMetadataItem::Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* data = std::get_if<NSData>(&value)) return "<" + std::string(data->text()) + ">";
  return "{data: " + std::string(std::get<AVMetadataItem::Dictionary>(value).at("data").text()) + "}";
}

/// "FORMAT: key=value key=value; FORMAT: …" with "-" for an absent key.
std::string described(const AVURLAsset& asset) {
  std::string text;
  for (const auto& format : asset.availableMetadataFormats()) {
    text += (text.empty() ? "" : "; ") + format + ":";
    for (const auto& item : asset.metadataForFormat(format))
      text += " " + item.commonKey().value_or("-") + "=" + textOf(item.value());
  }
  return text;
}

class AVURLAssetTest : public testing::Test {
 protected:
  std::string describedMedia(const std::string& name) {
    const auto url = NSURL::fileURLWithPath("/var/mobile/Media/" + name);
    return described(*AVURLAsset::URLAssetWithURLOptions(url, nullptr));
  }
  std::string describedBytes(const std::string& bytes) {
    device.media().write("song.mp3", bytes);
    return describedMedia("song.mp3");
  }

  test::TestDevice device;
  const test::TemporaryFolder& folder = device.media();
  const std::vector<std::string> tags{"title=Title",   "artist=Artist", "album=Album",
                                      "genre=Ambient", "track=07/12",   "date=2014-05-01"};
  const std::string texts = " title=Title artist=Artist albumName=Album";
};

TEST_F(AVURLAssetTest, KeylessItemsComeLastAsGenreTrackNumberAndYear) {
  const auto frames = textFrame(3, "TYER", "2014") + textFrame(3, "TRCK", "07/12") +
                      textFrame(3, "TCON", "(26)") + pictureFrame(3, "image") +
                      textFrame(3, "TALB", "Album") + textFrame(3, "TPE1", "Artist") +
                      textFrame(3, "TIT2", "Title");
  EXPECT_EQ(describedBytes(test::tag(3, frames)),
            "ID3v2:" + texts + " artwork={data: image} -=Ambient -=07 -=2014");
}

TEST_F(AVURLAssetTest, FrontCoversComeAfterOtherPictures) {
  EXPECT_EQ(describedBytes(test::tag(
                3, pictureFrame(3, "front", 3) + pictureFrame(3, "back", 4) + pictureFrame(3, "other", 0))),
            "ID3v2: artwork={data: back} artwork={data: other} artwork={data: front}");
}

TEST_F(AVURLAssetTest, FieldsThatAreAbsentGiveNoItem) {
  EXPECT_EQ(describedBytes(test::tag(3, textFrame(3, "TPE1", "Artist"))), "ID3v2: artist=Artist");
}

TEST_F(AVURLAssetTest, ReadsEachFormatThatOthersWrite) {
  test::encode(folder, "a.flac", tags);
  test::encode(folder, "a.ogg", tags);
  test::encode(folder, "a.opus", tags);
  test::encode(folder, "a.m4a", tags);
  test::encode(folder, "a.mp3", tags);
  const auto all = texts + " -=Ambient -=07 -=2014";
  EXPECT_EQ(describedMedia("a.flac"), "Vorbis comment:" + all);
  EXPECT_EQ(describedMedia("a.ogg"), "Vorbis comment:" + all);
  EXPECT_EQ(describedMedia("a.opus"), "Vorbis comment:" + all);
  EXPECT_EQ(describedMedia("a.m4a"), "MP4:" + texts + " -=Ambient -=7 -=2014") << "MP4 stores a number";
  EXPECT_EQ(describedMedia("a.mp3"), "ID3v2:" + all);
}

TEST_F(AVURLAssetTest, ReadsWhatOtherTaggersWrite) {
  const auto all = texts + " -=Ambient -=7 -=2014"s;
  test::encodeWithLame(folder, "lame23.mp3",
                       "--id3v2-only --tt Title --ta Artist --tl Album --tg Ambient --tn 7/12 --ty 2014");
  EXPECT_EQ(describedMedia("lame23.mp3"), "ID3v2:" + all);
  test::encodeWithLame(folder, "lame1.mp3",
                       "--id3v1-only --tt Title --ta Artist --tl Album --tg Ambient --tn 7 --ty 2014");
  EXPECT_EQ(describedMedia("lame1.mp3"), "ID3v1:" + all);
  const auto blank = test::encodeWithLame(folder, "id3v2.mp3");
  test::run("id3v2 -t Title -a Artist -A Album -g 26 -T 7/12 -y 2014 " + blank);
  EXPECT_EQ(describedMedia("id3v2.mp3"), "ID3v2:" + all);
  test::run("eyeD3 -Q --remove-all --to-v2.4 -t Title -a Artist -A Album -G Ambient -n 7 -N 12 -Y 2014 " +
            test::encodeWithLame(folder, "eyed3.mp3"));
  EXPECT_EQ(describedMedia("eyed3.mp3"), "ID3v2:" + texts + " -=Ambient -=07 -=2014");
}

TEST_F(AVURLAssetTest, ReadsTheCoverOfEachFormat) {
  const auto picture = test::makePicture(folder, "cover.png");
  const auto addCover = R"(
import sys, mutagen, mutagen.flac, mutagen.id3, mutagen.mp4, base64
path, image = sys.argv[1], open(sys.argv[2], 'rb').read()
song = mutagen.File(path)
picture = mutagen.flac.Picture()
picture.type, picture.mime, picture.data = 3, 'image/png', image
if path.endswith('.flac'): song.add_picture(picture)
elif path.endswith('.m4a'): song['covr'] = [mutagen.mp4.MP4Cover(image, mutagen.mp4.MP4Cover.FORMAT_PNG)]
elif path.endswith('.mp3'): song.tags.add(mutagen.id3.APIC(3, 'image/png', 3, 'cover ü', image))
else: song['metadata_block_picture'] = [base64.b64encode(picture.write()).decode()]
song.save()
)";
  for (const auto* name : {"a.flac", "a.ogg", "a.opus", "a.m4a", "a.mp3"}) {
    const auto path = test::encode(folder, name, {"title=T"});
    test::python(addCover, {path, picture});
    const auto cover =
        name == "a.mp3"s ? "{data: " + contentsOf(picture) + "}" : "<" + contentsOf(picture) + ">";
    EXPECT_TRUE(describedMedia(name).ends_with(" title=T artwork=" + cover)) << name;
  }
}

TEST_F(AVURLAssetTest, TellsFilesByTheirContentAndNotByTheirName) {
  for (const auto* name : {"a.flac", "a.ogg", "a.opus", "a.m4a"}) {
    std::filesystem::rename(test::encode(folder, name, {"title=T"}), folder / "wrong.mp3");
    EXPECT_NE(describedMedia("wrong.mp3").find("title=T"), std::string::npos) << name;
  }
}

TEST_F(AVURLAssetTest, AFLACFileMayHaveID3TagsAround) {
  const auto flac = contentsOf(test::encode(folder, "a.flac", {"title=T"}));
  const auto front = test::tag(3, textFrame(3, "TIT2", "Front") + textFrame(3, "TPE1", "Artist"));
  EXPECT_EQ(describedBytes(front + flac + test::id3v1("End", "End", "Album", "", 0, 255)),
            "ID3v1: albumName=Album; ID3v2: title=Front artist=Artist; Vorbis comment: title=T");
}

TEST_F(AVURLAssetTest, HasNoFormatsForWhatIsNoAudio) {
  device.media().write("text.mp3", "A text, and not a short one either.\n");
  device.media().write("empty.mp3", "");
  device.media().makeFolder("folder.mp3");
  ASSERT_EQ(mkfifo((folder / "pipe.mp3").c_str(), 0600), 0);
  std::filesystem::create_symlink("loop.mp3", folder / "loop.mp3");
  for (const auto* name : {"text.mp3", "empty.mp3", "folder.mp3", "pipe.mp3", "loop.mp3", "missing.mp3"})
    EXPECT_EQ(describedMedia(name), "") << name;
  EXPECT_EQ(describedMedia("../../../etc/passwd"), "") << "outside the device";
}

TEST_F(AVURLAssetTest, AFormatThatTheFileHasNotHasNoItems) {
  device.media().write("song.mp3", test::tag(3, textFrame(3, "TIT2", "T")));
  const auto asset =
      AVURLAsset::URLAssetWithURLOptions(NSURL::fileURLWithPath("/var/mobile/Media/song.mp3"), nullptr);
  EXPECT_EQ(asset->metadataForFormat("ID3v2").size(), 1U);
  EXPECT_TRUE(asset->metadataForFormat("MP4").empty());
}

TEST_F(AVURLAssetTest, ACoverOutlivesItsAssetTheNextOnesAndItsFile) {
  const auto cover = [&](const std::string& name, char c, unsigned flags) {
    device.media().write(name, test::tag(3, pictureFrame(3, std::string(100'000, c)), flags));
    const auto url = NSURL::fileURLWithPath("/var/mobile/Media/" + name);
    const auto asset = AVURLAsset::URLAssetWithURLOptions(url, nullptr);
    std::filesystem::remove(folder / name);
    return std::get<AVMetadataItem::Dictionary>(asset->metadataForFormat("ID3v2")[0].value()).at("data");
  };
  for (const unsigned flags : {0U, 0x80U}) {
    const NSData first = cover("1.mp3", 'a', flags);
    const NSData second = cover("2.mp3", 'b', flags);
    EXPECT_EQ(first.text(), std::string(100'000, 'a'));
    EXPECT_EQ(second.text(), std::string(100'000, 'b'));
  }
}

}  // namespace
}  // namespace quaverly
