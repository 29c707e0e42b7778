#include <gtest/gtest.h>

#include "RewrittenSong.h"
#include "Support/AudioFiles.h"
#include "Support/Command.h"
#include "Support/TagBytes.h"

namespace quaverly::library {
namespace {

using namespace std::string_literals;
using test::mpegFrames;
using test::tag;
using test::textFrame;

class SongInspection : public testing::Test {
 protected:
  std::optional<SongFile> inspect(const std::string& bytes) {
    const OpenSong song(folder.write("song", bytes));
    return inspectSong(song.descriptor());
  }
  std::optional<ContentHash> hashOf(const std::string& path) {
    const OpenSong song(path);
    return audioHash(song.descriptor(), song.inspect());
  }

  test::TemporaryFolder folder;
  const std::vector<std::string> tags{"title=Title", "artist=Artist", "album=Album", "track=3/12",
                                      "date=2014-05-01"};
  const SongTags read{.title = "Title", .artist = "Artist", .album = "Album", .trackNumber = 3, .year = 2014};
};

TEST_F(SongInspection, FindsKindAndTagsOfEachFormat) {
  const std::vector<std::pair<std::string, AudioKind>> cases{{"a.mp3", AudioKind::mpeg},
                                                             {"a.flac", AudioKind::flac},
                                                             {"a.ogg", AudioKind::oggVorbis},
                                                             {"a.opus", AudioKind::oggOpus},
                                                             {"a.m4a", AudioKind::mp4}};
  for (const auto& [name, kind] : cases) {
    const auto song = OpenSong(test::encode(folder, name, tags)).inspect();
    EXPECT_EQ(song.kind, kind) << name;
    EXPECT_EQ(song.tags, read) << name;
    EXPECT_FALSE(song.hasArtwork) << name;
    EXPECT_TRUE(name.ends_with("."s + fileExtension(kind)));
  }
}

TEST_F(SongInspection, FindsTheAudioBetweenTheTags) {
  const auto front = tag(3, textFrame(3, "TIT2", "T"));
  const auto back = test::apeTag(test::apeItem("Artist", "A"), 1) + test::id3v1("", "", "B", "", 0, 255);
  const auto song = inspect(front + mpegFrames() + back);
  ASSERT_TRUE(song);
  EXPECT_EQ(song->length, front.size() + mpegFrames().size() + back.size());
  EXPECT_EQ(song->audioOffset, front.size());
  EXPECT_EQ(song->audioLength, mpegFrames().size());
  EXPECT_EQ(song->tags, (SongTags{.title = "T", .artist = "A", .album = "B"}));
}

TEST_F(SongInspection, SeesPictures) {
  EXPECT_TRUE(inspect(tag(3, test::pictureFrame(3, "image")) + mpegFrames())->hasArtwork);
}

TEST_F(SongInspection, RefusesWhatIsNoAudioThatWeFile) {
  for (const auto& bytes :
       {""s, "text"s, tag(3, textFrame(3, "TIT2", "T")),
        tag(3, textFrame(3, "TIT2", "T")) + "a text behind a tag", mpegFrames().substr(0, 300),
        "RIFF\0\0\0\0WAVEfmt "s, std::string(200'000, 'x') + mpegFrames()})
    EXPECT_FALSE(inspect(bytes)) << bytes.substr(0, 20);
  test::makeWave(folder);
  EXPECT_FALSE(inspectSong(OpenSong(folder / "tone.wav").descriptor()));
  EXPECT_FALSE(inspectSong(OpenSong("/dev/null").descriptor()));
  EXPECT_FALSE(inspectSong(-1));
}

TEST_F(SongInspection, ReadsFramesOfEveryVersionAndLayer) {
  for (const auto* options : {"-b 64 --resample 22.05", "-b 32 --resample 8 -m m", "-V 2", "-b 320"}) {
    const OpenSong song(test::encodeWithLame(folder, "a.mp3", options));
    EXPECT_EQ(song.inspect().kind, AudioKind::mpeg) << options;
  }
  test::run("ffmpeg -v error -y -i " + test::makeWave(folder) + " -c:a mp2 " + folder / "a.mp2");
  EXPECT_EQ(OpenSong(folder / "a.mp2").inspect().kind, AudioKind::mpeg);
}

TEST_F(SongInspection, AHashIsThatOfTheAudioAlone) {
  const auto one = folder.write("1.mp3", mpegFrames());
  const auto tagged = folder.write(
      "2.mp3", tag(3, textFrame(3, "TIT2", "T")) + mpegFrames() + test::id3v1("T", "", "", "", 0, 255));
  auto otherAudio = mpegFrames();
  otherAudio.back() = 'x';
  EXPECT_EQ(hashOf(one), hashOf(tagged));
  EXPECT_NE(hashOf(one), hashOf(folder.write("3.mp3", otherAudio)));
  EXPECT_EQ(hashOf(one)->hex().size(), 32U);
}

TEST_F(SongInspection, AHashStaysWhenAnotherTaggerRewritesTheFile) {
  const auto retag = R"(
import sys, mutagen
song = mutagen.File(sys.argv[1], easy=True)
song['title'] = 'A much longer title ' * 500
song.save()
)";
  for (const auto* name : {"a.mp3", "a.flac", "a.ogg", "a.opus", "a.m4a"}) {
    const auto path = test::encode(folder, name, {"title=T"});
    const auto before = hashOf(path);
    const auto bytes = test::contentsOf(path);
    test::python(retag, {path});
    EXPECT_NE(test::contentsOf(path), bytes);
    EXPECT_EQ(hashOf(path), before) << name;
    EXPECT_TRUE(before) << name;
  }
}

TEST_F(SongInspection, AHashTellsOtherAudioInEachFormat) {
  for (const auto* name : {"a.flac", "a.ogg", "a.opus", "a.m4a"}) {
    const auto path = test::encode(folder, name);
    auto bytes = test::contentsOf(path);
    // The audio of MP4 stands in the middle, the headers of Ogg take the first half.
    const size_t at = bytes.size() * (name == "a.m4a"s ? 5 : 9) / 10;
    bytes[at] = static_cast<char>(bytes[at] ^ 1);
    EXPECT_NE(hashOf(path), hashOf(folder.write("other", bytes))) << name;
  }
}

}  // namespace
}  // namespace quaverly::library
