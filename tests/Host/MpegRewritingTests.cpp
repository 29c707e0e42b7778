#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "RewrittenSong.h"
#include "Support/Command.h"
#include "Support/TagBytes.h"

namespace quaverly::library {
namespace {

using namespace std::string_literals;
using test::frame;
using test::mpegFrames;
using test::tag;
using test::textFrame;
using testing::HasSubstr;
using testing::Not;

const SongTags allTags{
    .title = "Title", .artist = "Artist", .album = "Album", .trackNumber = 3, .year = 2014};

TEST(RewriteMpeg, AFileWithoutATagGetsOneOfVersion23) {
  const RewrittenSong song(mpegFrames(), allTags);
  EXPECT_EQ(song.after().tags, allTags);
  EXPECT_EQ(song.bytes().substr(0, 4), "ID3\3");
  EXPECT_EQ(song.rewritten().head.substr(10, 16), textFrame(3, "TIT2", "Title"));
  EXPECT_EQ(song.rewritten().head.size(), 4096U);
  EXPECT_EQ(song.rewritten().tail, "");
}

TEST(RewriteMpeg, WithoutTagsAndWithoutOldOnesThereIsNoTag) {
  EXPECT_EQ(RewrittenSong(mpegFrames(), {}).rewritten().head, "");
}

TEST(RewriteMpeg, ValuesThatReadToTheSameStayAsWritten) {
  const auto frames = textFrame(4, "TRCK", "3/12") + textFrame(4, "TDRC", "2014-05-01") +
                      textFrame(4, "TPE1", "Artist\0Second"s);
  const RewrittenSong song(tag(4, frames) + mpegFrames(),
                           {.artist = "Artist", .trackNumber = 3, .year = 2014});
  EXPECT_EQ(song.rewritten().head.substr(10, frames.size()), frames);
}

TEST(RewriteMpeg, MutagenReadsWhatWasWritten) {
  const RewrittenSong song(tag(4, textFrame(4, "TIT2", "Old")) + mpegFrames(),
                           {.title = "Grüße 日本", .artist = "Ärzte"});
  const auto read =
      test::python("import sys, mutagen.id3\nt = mutagen.id3.ID3(sys.argv[1])\nprint(t['TIT2'], t['TPE1'])",
                   {song.path()});
  EXPECT_EQ(read, "Grüße 日本 Ärzte\n");
}

}  // namespace
}  // namespace quaverly::library
