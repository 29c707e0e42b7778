#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Platform/UIKit/UIImage.h"
#include "RewrittenSong.h"
#include "Support/AudioFiles.h"
#include "Support/Command.h"
#include "Support/TagBytes.h"

namespace quaverly::library {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;
using testing::Not;

constexpr const char* printTags = R"(
import sys, mutagen
song = mutagen.File(sys.argv[1])
for key in sorted(song.tags.keys() if hasattr(song.tags, 'keys') else song.tags):
    if key.lower() not in ('covr', 'metadata_block_picture', '----:com.apple.itunes:cdec'): print(key.lower(), song.tags[key])
)";

constexpr const char* printPictures = R"(
import sys, mutagen, mutagen.flac, base64, hashlib
song = mutagen.File(sys.argv[1])
def tell(kind, data): print(kind, hashlib.md5(data).hexdigest())
if hasattr(song, 'pictures'):
    for p in song.pictures: tell(p.type, p.data)
elif 'covr' in song.tags:
    for c in song.tags['covr']: tell('PNG' if c.imageformat == c.FORMAT_PNG else 'JPEG', bytes(c))
else:
    for b in song.tags.get('metadata_block_picture', []):
        p = mutagen.flac.Picture(base64.b64decode(b)); tell(p.type, p.data)
)";

class InPlaceRewriting : public testing::TestWithParam<const char*> {
 protected:
  InPlaceRewriting()
      : path(test::encode(folder, GetParam(),
                          {"title=Old", "artist=Artist", "track=3/12", "date=2014-05-01", "genre=Ambient",
                           "comment=Kept"})) {}

  /// Rewrites the file, and holds the result against what must always be true.
  void rewrite(const SongTags& tags, const ArtworkChange& artwork = {}) {
    const OpenSong song(path);
    const auto before = song.inspect();
    const auto audio = audioHash(song.descriptor(), before);
    const auto sound = md5();
    const auto after = rewriteInPlace(song.descriptor(), before, tags, artwork);
    ASSERT_TRUE(after);
    EXPECT_EQ(*after, tagsAfter(before, tags));
    EXPECT_EQ(song.inspect().tags, *after);
    EXPECT_EQ(audioHash(song.descriptor(), song.inspect()), audio);
    EXPECT_EQ(md5(), sound);
  }

  std::string md5() const { return test::run("ffmpeg -v error -i " + path + " -map 0:a -f md5 -"); }
  std::string tags() const { return test::python(printTags, {path}); }
  std::string pictures() const { return test::python(printPictures, {path}); }
  std::string picture(const std::string& name, const std::string& size = "32x32") {
    return test::contentsOf(test::makePicture(folder, name, size));
  }
  std::string sum(const std::string& bytes) {
    return test::run("md5sum < " + folder.write("sum", bytes)).substr(0, 32);
  }
  bool isMP4() const { return path.ends_with(".m4a"); }
  std::string told(int kind, const std::string& image) {
    const auto* format = image.starts_with("\x89PNG") ? "PNG" : "JPEG";
    return (isMP4() ? format : std::to_string(kind)) + " " + sum(image) + "\n";
  }

  test::TemporaryFolder folder;
  const std::string path;
};

TEST_P(InPlaceRewriting, WritesTheTagsAndKeepsTheRest) {
  rewrite({.title = "Grüße 日本", .artist = "Artist", .album = "Album", .trackNumber = 5, .year = 1984});
  const auto written = tags();
  for (const auto* text : {"['Grüße 日本']", "['Artist']", "['Album']", "1984", "Ambient", "Kept"})
    EXPECT_THAT(written, HasSubstr(text));
  EXPECT_THAT(written, HasSubstr(isMP4() ? "trkn [(5, 12)]" : "tracknumber ['5']"));
}

TEST_P(InPlaceRewriting, ValuesThatReadToTheSameStayAsWritten) {
  const auto before = tags();
  rewrite({.title = "Old", .artist = "Artist", .trackNumber = 3, .year = 2014});
  EXPECT_EQ(tags(), before);
  EXPECT_THAT(before, HasSubstr("2014-05-01"));
}

TEST_P(InPlaceRewriting, WhatIsNotWantedGoes) {
  rewrite({});
  const auto written = tags();
  for (const auto* text : {"Old", "Artist", "2014", "trkn", "tracknumber"})
    EXPECT_THAT(written, Not(HasSubstr(text)));
  EXPECT_THAT(written, HasSubstr("Ambient"));
}

TEST_P(InPlaceRewriting, SeveralArtistsStayWhileTheFirstDoes) {
  test::python(
      "import sys, mutagen\ns = mutagen.File(sys.argv[1], easy=True)\ns['artist'] = ['Artist', "
      "'Second']\ns.save()",
      {path});
  rewrite({.artist = "Artist"});
  EXPECT_THAT(tags(), HasSubstr("['Artist', 'Second']"));
  rewrite({.artist = "Second"});
  EXPECT_THAT(tags(), HasSubstr("['Second']"));
}

TEST_P(InPlaceRewriting, SortValuesGoWithTheirNames) {
  const auto keys = isMP4() ? "sonm soar"s : "titlesort artistsort"s;
  test::python(
      "import sys, mutagen\ns = mutagen.File(sys.argv[1])\nfor k in sys.argv[2].split(): s[k] = "
      "['Sort']\ns.save()",
      {path, keys});
  rewrite({.title = "New", .artist = "Artist"});
  const auto written = tags();
  EXPECT_THAT(written, Not(HasSubstr(keys.substr(0, keys.find(' ')) + " ['Sort']")));
  EXPECT_THAT(written, HasSubstr(keys.substr(keys.find(' ') + 1) + " ['Sort']"));
}

TEST_P(InPlaceRewriting, PicturesAreAddedReplacedKeptAndRemoved) {
  const auto first = picture("a.jpg"), second = picture("b.png", "40x40");
  EXPECT_EQ(pictures(), "");
  rewrite({.title = "T"}, {ArtworkChange::Kind::replace, NSData(std::string_view(first))});
  EXPECT_EQ(pictures(), told(3, first));
  EXPECT_TRUE(OpenSong(path).inspect().hasArtwork);
  rewrite({.title = "T"}, {ArtworkChange::Kind::replace, NSData(std::string_view(second))});
  EXPECT_EQ(pictures(), told(3, second));
  rewrite({.title = "U"}, {});
  EXPECT_EQ(pictures(), told(3, second));
  rewrite({.title = "T"}, {.kind = ArtworkChange::Kind::remove});
  EXPECT_EQ(pictures(), "");
}

TEST_P(InPlaceRewriting, ThePictureThatIsThereStaysAsItWasWritten) {
  const auto original = picture("a.jpg");
  rewrite({}, {ArtworkChange::Kind::replace, NSData(std::string_view(original))});
  const auto staged =
      UIImageJPEGRepresentation(*UIImage::imageWithData(NSData(std::string_view(original))), 1.0);
  ASSERT_NE(staged->text(), original);
  rewrite({}, {ArtworkChange::Kind::replace, *staged});
  EXPECT_EQ(pictures(), told(3, original));
}

TEST_P(InPlaceRewriting, OtherPicturesStay) {
  const auto back = picture("back.jpg"), front = picture("front.png", "40x40");
  test::python(R"(
import sys, mutagen, mutagen.flac, mutagen.mp4, base64
s, image = mutagen.File(sys.argv[1]), open(sys.argv[2], 'rb').read()
p = mutagen.flac.Picture(); p.type, p.mime, p.data = 4, 'image/jpeg', image
if hasattr(s, 'add_picture'): s.add_picture(p)
elif sys.argv[1].endswith('.m4a'): s['covr'] = [mutagen.mp4.MP4Cover(b'\xff\xd8\xff old'), mutagen.mp4.MP4Cover(image)]
else: s['metadata_block_picture'] = [base64.b64encode(p.write()).decode()]
s.save()
)",
               {path, folder / "back.jpg"});
  rewrite({}, {ArtworkChange::Kind::replace, NSData(std::string_view(front))});
  EXPECT_THAT(pictures(), HasSubstr(told(4, back)));
  EXPECT_THAT(pictures(), HasSubstr(told(3, front)));
  EXPECT_EQ(pictures().size(), (told(4, back) + told(3, front)).size());
}

TEST_P(InPlaceRewriting, AFileThatCannotBeWrittenIsAFailure) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const auto song = inspectSong(descriptor);
  EXPECT_EQ(rewriteInPlace(descriptor, *song, {.title = std::string(5000, 'x')}, {}), std::nullopt);
  close(descriptor);
}

INSTANTIATE_TEST_SUITE_P(Formats, InPlaceRewriting, testing::Values("a.flac", "a.ogg", "a.opus", "a.m4a"),
                         [](const auto& name) { return std::string(name.param).substr(2); });

TEST(InPlaceRewritingOfFLAC, KeepsOtherTagsInStep) {
  const test::TemporaryFolder folder;
  const auto flac = test::contentsOf(test::encode(folder, "a.flac", {"title=Old"}));
  const auto path = folder.write("b.flac", test::tag(3, test::textFrame(3, "TIT2", "Old")) + flac +
                                               test::id3v1("Old", "", "", "", 0, 255));
  const OpenSong song(path);
  const auto before = song.inspect();
  const auto audio = audioHash(song.descriptor(), before);
  ASSERT_TRUE(rewriteInPlace(song.descriptor(), before, {.title = "New"}, {}));
  EXPECT_EQ(audioHash(song.descriptor(), song.inspect()), audio);
  const auto bytes = test::contentsOf(path);
  EXPECT_THAT(bytes, Not(HasSubstr("Old")));
  EXPECT_THAT(bytes, HasSubstr("TAGNew"));
}

}  // namespace
}  // namespace quaverly::library
