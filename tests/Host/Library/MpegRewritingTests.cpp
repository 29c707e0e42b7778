#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/UIKit/UIImage.h"
#include "RewrittenSong.h"
#include "Support/AudioFiles.h"
#include "Support/Command.h"
#include "Support/TagBytes.h"

namespace quaverly::library {
namespace {

using namespace std::string_literals;
using test::apeItem;
using test::apeTag;
using test::frame;
using test::id3v1;
using test::mpegFrames;
using test::number;
using test::pictureFrame;
using test::tag;
using test::textFrame;
using testing::HasSubstr;
using testing::Not;

const SongTags allTags{
    .title = "Title", .artist = "Artist", .album = "Album", .trackNumber = 3, .year = 2014};

ArtworkChange replaceBy(std::string_view image) {
  return {ArtworkChange::Kind::replace, NSData(image)};
}

/// The frames of a rewritten tag, padding left out.
std::string framesOf(const RewrittenSong& song) {
  const auto& head = song.rewritten().head;
  if (head.empty()) return "";
  const auto body = head.substr(10);
  return body.substr(0, body.find_last_not_of('\0') + 1);
}

std::string textFrames(int version, const std::vector<std::pair<std::string, std::string>>& texts) {
  std::string frames;
  for (const auto& [id, text] : texts) frames += textFrame(version, id, text);
  return frames;
}

std::string utf8Frame(std::string_view id, std::string_view text) {
  return frame(4, id, "\3" + std::string(text));
}

TEST(RewriteMpeg, AFileWithoutATagGetsOneOfVersion23) {
  const RewrittenSong song(mpegFrames(), allTags);
  EXPECT_EQ(song.after().tags, allTags);
  EXPECT_EQ(song.bytes().substr(0, 6), "ID3\3\0\0"s);
  EXPECT_EQ(
      framesOf(song),
      textFrames(
          3, {{"TIT2", "Title"}, {"TPE1", "Artist"}, {"TALB", "Album"}, {"TRCK", "3"}, {"TYER", "2014"}}));
  EXPECT_EQ(song.rewritten().head.size(), 4096U);
  EXPECT_EQ(song.rewritten().tail, "");
}

TEST(RewriteMpeg, EachVersionIsWrittenInItsOwnWay) {
  const std::string other2 = frame(2, "TEN", "\0x"s);
  const RewrittenSong two(tag(2, other2) + mpegFrames(), allTags);
  EXPECT_EQ(
      framesOf(two),
      other2 +
          textFrames(2,
                     {{"TT2", "Title"}, {"TP1", "Artist"}, {"TAL", "Album"}, {"TRK", "3"}, {"TYE", "2014"}}));
  const std::string other4 = frame(4, "TENC", "\0x"s);
  const RewrittenSong four(tag(4, other4) + mpegFrames(), allTags);
  EXPECT_EQ(framesOf(four), other4 + utf8Frame("TIT2", "Title") + utf8Frame("TPE1", "Artist") +
                                utf8Frame("TALB", "Album") + utf8Frame("TRCK", "3") +
                                utf8Frame("TDRC", "2014"));
}

TEST(RewriteMpeg, WithNothingToSayThereIsNoTag) {
  EXPECT_EQ(RewrittenSong(mpegFrames(), {}).rewritten().head, "");
  EXPECT_EQ(RewrittenSong(tag(3, textFrame(3, "TIT2", "Old")) + mpegFrames(), {}).rewritten().head, "");
}

TEST(RewriteMpeg, NumbersBelowOneAndEmptyTextsAreNone) {
  const RewrittenSong song(mpegFrames(), {.title = "", .trackNumber = -1, .year = 0});
  EXPECT_EQ(song.rewritten().head, "");
  EXPECT_EQ(song.rewritten().tags, SongTags{});
}

TEST(RewriteMpeg, ValuesThatReadToTheSameStayAsWritten) {
  const std::vector<std::pair<std::string, SongTags>> cases{
      {textFrame(4, "TRCK", "3/12"), {.trackNumber = 3}},
      {textFrame(4, "TRCK", "03"), {.trackNumber = 3}},
      {textFrame(4, "TRCK", "1234"), {.trackNumber = 1234}},
      {textFrame(4, "TDRC", "2014-05-01"), {.year = 2014}},
      {textFrame(4, "TPE1", "One\0Two"s), {.artist = "One"}},
      {frame(4, "TIT2", "\1\xfe\xff\0T"s), {.title = "T"}},
      {textFrame(4, "TYER", "2014") + textFrame(4, "TDRC", "2014"), {.year = 2014}},
  };
  for (const auto& [frames, tags] : cases)
    EXPECT_EQ(framesOf(RewrittenSong(tag(4, frames) + mpegFrames(), tags)), frames);
}

TEST(RewriteMpeg, ANumberThatAReaderTakesForNoneIsWrittenAnew) {
  EXPECT_EQ(framesOf(RewrittenSong(tag(3, textFrame(3, "TYER", "99")) + mpegFrames(), {.year = 99})),
            textFrame(3, "TYER", "0099"));
}

TEST(RewriteMpeg, WhatReadsToNothingStaysWhereNothingIsWanted) {
  const auto frames =
      textFrame(3, "TYER", "99") + textFrame(3, "TRCK", "A1") + frame(3, "TIT2", "encrypted", 0x0040);
  EXPECT_EQ(framesOf(RewrittenSong(tag(3, frames) + mpegFrames(), {})), frames);
}

TEST(RewriteMpeg, AChangedFrameTakesThePlaceOfTheFirstThatItReplaces) {
  const auto before = textFrame(3, "TENC", "a") + textFrame(3, "TIT2", "Old") + textFrame(3, "TSSE", "b") +
                      textFrame(3, "TIT2", "Older");
  const auto after = textFrame(3, "TENC", "a") + textFrame(3, "TIT2", "New") + textFrame(3, "TSSE", "b");
  EXPECT_EQ(framesOf(RewrittenSong(tag(3, before) + mpegFrames(), {.title = "New"})), after);
}

TEST(RewriteMpeg, FramesThatContradictEachOtherBecomeOne) {
  const auto before = textFrame(3, "TIT2", "Other") + textFrame(3, "TIT2", "Title");
  EXPECT_EQ(framesOf(RewrittenSong(tag(3, before) + mpegFrames(), {.title = "Title"})),
            textFrame(3, "TIT2", "Title"));
}

TEST(RewriteMpeg, UntouchedFramesAreCopiedByteForByte) {
  const auto kept = frame(3, "PRIV", "owner\0\xff\0\xff\xe0"s) +
                    frame(3, "COMM", "\1eng\xff\xfe\0\0\xff\xfex\0"s) + textFrame(3, "TCON", "(17)") +
                    frame(3, "TXXX", "gk"s, 0x8020) + frame(3, "ZZZZ", "?") + frame(3, "CHAP", "c\0TIT2"s);
  EXPECT_EQ(framesOf(RewrittenSong(tag(3, kept) + mpegFrames(), {})), kept);
}

TEST(RewriteMpeg, SortFieldsGoWithTheNamesThatTheyAreFor) {
  const auto names = textFrames(3, {{"TIT2", "The T"}, {"TPE1", "The A"}, {"TALB", "The B"}});
  const auto sorts = textFrames(3, {{"TSOT", "T"}, {"TSOP", "A"}, {"TSOA", "B"}, {"XSOT", "T"}});
  const SongTags same{.title = "The T", .artist = "The A", .album = "The B"};
  EXPECT_EQ(framesOf(RewrittenSong(tag(3, names + sorts) + mpegFrames(), same)), names + sorts);
  const SongTags other{.title = "New", .artist = "The A", .album = "The B"};
  EXPECT_EQ(
      framesOf(RewrittenSong(tag(3, names + sorts) + mpegFrames(), other)),
      textFrames(3, {{"TIT2", "New"}, {"TPE1", "The A"}, {"TALB", "The B"}, {"TSOP", "A"}, {"TSOA", "B"}}));
}

TEST(RewriteMpeg, DayAndTimeGoWithTheYear) {
  const auto date = textFrames(3, {{"TYER", "2014"}, {"TDAT", "0105"}, {"TIME", "1200"}});
  EXPECT_EQ(framesOf(RewrittenSong(tag(3, date) + mpegFrames(), {.year = 2014})), date);
  EXPECT_EQ(framesOf(RewrittenSong(tag(3, date) + mpegFrames(), {.year = 2015})),
            textFrame(3, "TYER", "2015"));
}

TEST(RewriteMpeg, StuffedTagsAreWrittenPlainly) {
  const auto priv = frame(3, "PRIV", "o\0\xff\xe0\xff\0x"s);
  const RewrittenSong song(tag(3, test::stuffed(priv), 0x80) + mpegFrames(), {.title = "T"});
  EXPECT_EQ(framesOf(song), priv + textFrame(3, "TIT2", "T"));
  EXPECT_EQ(song.rewritten().head[5], 0) << "flags";
}

TEST(RewriteMpeg, FramesOfAStuffedTagOf24SayThatTheyAreStuffed) {
  const auto body = test::stuffed("o\0\xff\xe0"s);
  const auto plain = frame(4, "PRIV", "o\0x"s);
  const RewrittenSong song(tag(4, frame(4, "PRIV", body) + plain, 0x80) + mpegFrames(), {.title = "T"});
  EXPECT_EQ(framesOf(song), frame(4, "PRIV", body, 0x0002) + plain + utf8Frame("TIT2", "T"));
}

TEST(RewriteMpeg, SizesAreWrittenAsTheVersionAsks) {
  const std::string text(200, 'x');
  const auto wrong = "TENC" + number(201, 4) + "\0\0\0"s + text;
  EXPECT_EQ(framesOf(RewrittenSong(tag(4, wrong + textFrame(4, "TSSE", "y")) + mpegFrames(), {})),
            textFrame(4, "TENC", text) + textFrame(4, "TSSE", "y"));
}

TEST(RewriteMpeg, TheTagIsFilledUpToAMultipleOf4096) {
  for (const size_t length : {0U, 4060U, 4065U, 4066U, 4067U, 9000U}) {
    const RewrittenSong song(mpegFrames(), {.title = std::string(1 + length, 'x')});
    const size_t frames = 10 + 11 + 1 + length;
    EXPECT_EQ(song.rewritten().head.size(), (frames + 4095) / 4096 * 4096) << length;
  }
}

TEST(RewriteMpeg, ExtendedHeadersAndFootersAreLeftOut) {
  const auto frames = textFrame(4, "TENC", "x");
  const auto before = tag(4, number(6, 4, 7) + "\1\0"s + frames, 0x50);
  const RewrittenSong song(before + "3DI" + before.substr(3, 7) + mpegFrames(), {});
  EXPECT_EQ(framesOf(song), frames);
}

TEST(RewriteMpeg, TagsInARowBecomeOne) {
  const auto first = tag(3, textFrame(3, "TIT2", "T") + textFrame(3, "TENC", "first"));
  const auto second =
      tag(3, textFrame(3, "TENC", "second") + textFrame(3, "TSSE", "second") + pictureFrame(3, "image"));
  const auto newer = tag(4, textFrame(4, "TCOM", "newer"));
  const RewrittenSong song(first + second + newer + mpegFrames(), {.title = "T"});
  EXPECT_EQ(framesOf(song), textFrame(3, "TIT2", "T") + textFrame(3, "TENC", "first") +
                                textFrame(3, "TSSE", "second") + pictureFrame(3, "image"));
}

TEST(RewriteMpeg, ATagBehindTheAudioMovesToTheFront) {
  const auto appended = tag(4, utf8Frame("TIT2", "T") + utf8Frame("TENC", "x"), 0x10);
  const RewrittenSong song(
      mpegFrames() + appended + "3DI" + appended.substr(3, 7) + id3v1("T", "", "", "", 0, 255),
      {.title = "T"});
  EXPECT_EQ(framesOf(song), utf8Frame("TIT2", "T") + utf8Frame("TENC", "x"));
  EXPECT_EQ(song.rewritten().tail, id3v1("T", "", "", "", 0, 255));
}

// Pictures.

class RewriteMpegPictures : public testing::Test {
 protected:
  const std::string cover = test::contentsOf(test::makePicture(folder, "a.jpg"));
  const std::string other = test::contentsOf(test::makePicture(folder, "b.png", "20x20"));
  static inline test::TemporaryFolder folder;

  static std::string staged(const std::string& picture) {
    return std::string(UIImageJPEGRepresentation(*UIImage::imageWithData(NSData(picture)), 1.0)->text());
  }
  static std::string newCover(int version, const std::string& picture, const std::string& type) {
    return frame(version, "APIC", "\0"s + type + "\0\3\0"s + picture);
  }
};

TEST_F(RewriteMpegPictures, StayWhenTheyAreKept) {
  const auto frames = pictureFrame(3, cover) + pictureFrame(3, other, 4);
  EXPECT_EQ(framesOf(RewrittenSong(tag(3, frames) + mpegFrames(), {})), frames);
}

TEST_F(RewriteMpegPictures, AllGoWhenTheyAreRemoved) {
  const auto frames = pictureFrame(3, cover) + pictureFrame(3, other, 4) + textFrame(3, "TENC", "x");
  const RewrittenSong song(tag(3, frames) + mpegFrames(), {}, {.kind = ArtworkChange::Kind::remove});
  EXPECT_EQ(framesOf(song), textFrame(3, "TENC", "x"));
  EXPECT_FALSE(song.after().hasArtwork);
}

TEST_F(RewriteMpegPictures, ANewFrontCoverTakesThePlaceOfTheOldOne) {
  const auto frames = textFrame(3, "TENC", "x") + pictureFrame(3, cover) + pictureFrame(3, cover, 4) +
                      textFrame(3, "TSSE", "y");
  const RewrittenSong song(tag(3, frames) + mpegFrames(), {}, replaceBy(other));
  EXPECT_EQ(framesOf(song), textFrame(3, "TENC", "x") + newCover(3, other, "image/png") +
                                pictureFrame(3, cover, 4) + textFrame(3, "TSSE", "y"));
}

TEST_F(RewriteMpegPictures, ANewFrontCoverIsAddedWhereThereIsNone) {
  for (const int version : {3, 4}) {
    const RewrittenSong song(tag(version, textFrame(version, "TENC", "x")) + mpegFrames(), {},
                             replaceBy(cover));
    EXPECT_EQ(framesOf(song), textFrame(version, "TENC", "x") + newCover(version, cover, "image/jpeg"));
    EXPECT_TRUE(song.after().hasArtwork);
  }
  const RewrittenSong song(tag(2, textFrame(2, "TEN", "x")) + mpegFrames(), {}, replaceBy(other));
  EXPECT_EQ(framesOf(song), textFrame(2, "TEN", "x") + frame(2, "PIC", "\0PNG\3\0"s + other));
}

TEST_F(RewriteMpegPictures, AnUnknownFormatIsEmbeddedAsItIs) {
  const RewrittenSong song(mpegFrames(), {}, replaceBy("GIF89a and so on"));
  EXPECT_EQ(framesOf(song), newCover(3, "GIF89a and so on", "image/gif"));
}

TEST_F(RewriteMpegPictures, ThePictureThatIsThereStaysAsItWasWritten) {
  const auto frames = pictureFrame(3, other, 4) + frame(3, "APIC", "\0image/jpg\0\3description\0"s + cover);
  const auto before = tag(3, frames) + mpegFrames();
  EXPECT_EQ(framesOf(RewrittenSong(before, {}, replaceBy(cover))), frames) << "the very same";
  EXPECT_EQ(framesOf(RewrittenSong(before, {}, replaceBy(staged(cover)))), frames) << "as it is staged";
  EXPECT_NE(framesOf(RewrittenSong(before, {}, replaceBy(staged(other)))), frames)
      << "another picture of the file";
  const auto single = pictureFrame(3, cover, 0);
  EXPECT_EQ(framesOf(RewrittenSong(tag(3, single) + mpegFrames(), {}, replaceBy(staged(cover)))), single)
      << "the only picture, of no particular kind";
}

TEST_F(RewriteMpegPictures, APictureTooLongForItsTagVersionIsRefused) {
  const test::TemporaryFolder files;
  const OpenSong song(files.write("a.mp3", tag(2, textFrame(2, "TEN", "x")) + mpegFrames()));
  const std::string huge(size_t{1} << 24, 'x');
  EXPECT_FALSE(rewriteMpeg(song.descriptor(), song.inspect(), {}, replaceBy(huge)).has_value());
}

// Tags behind the audio.

TEST(RewriteMpegTail, ID3v1IsKeptInStep) {
  const auto old = id3v1("Old", "Artist", "", "1999", 9, 17);
  EXPECT_EQ(RewrittenSong(mpegFrames() + old, allTags).rewritten().tail,
            id3v1("Title", "Artist", "Album", "2014", 3, 17));
  EXPECT_EQ(RewrittenSong(mpegFrames() + old, {}).rewritten().tail, id3v1("", "", "", "", 0, 17));
}

TEST(RewriteMpegTail, ID3v1HoldsAsMuchAsFits) {
  const SongTags tags{
      .title = "A title that is longer than thirty characters", .artist = "Ärzte", .trackNumber = 300};
  EXPECT_EQ(RewrittenSong(mpegFrames() + id3v1("", "", "", "", 1, 255), tags).rewritten().tail,
            id3v1("A title that is longer than th", "\xc4rzte", "", "", 0, 255));
}

TEST(RewriteMpegTail, FieldsOfID3v1ThatSayTheSameStayAsWritten) {
  const auto padded =
      id3v1("Title                         ", "A name of thirty characters or", "", "", 0, 12);
  const SongTags tags{.title = "Title", .artist = "A name of thirty characters or even more"};
  EXPECT_EQ(RewrittenSong(mpegFrames() + padded, tags).rewritten().tail, padded);
}

TEST(RewriteMpegTail, UnchangedNamesInAnotherAlphabetStayAsTheyAre) {
  const auto cyrillic = id3v1("\xcf\xf0\xe8\xe2\xe5\xf2", "A", "", "", 0, 255);
  const auto front = tag(4, utf8Frame("TIT2", "Привет"));
  EXPECT_EQ(
      RewrittenSong(front + mpegFrames() + cyrillic, {.title = "Привет", .artist = "A"}).rewritten().tail,
      cyrillic);
  EXPECT_EQ(RewrittenSong(front + mpegFrames() + cyrillic, {.title = "Пока", .artist = "A"}).rewritten().tail,
            id3v1("????", "A", "", "", 0, 255));
}

TEST(RewriteMpegTail, ALongCommentKeepsItsPlaceInID3v1) {
  auto old = id3v1("T", "", "", "", 0, 255);
  old.replace(97, 30, "A comment of thirty characters");
  EXPECT_EQ(RewrittenSong(mpegFrames() + old, {.title = "T", .trackNumber = 5}).rewritten().tail, old);
}

TEST(RewriteMpegTail, APETagsAreKeptInStep) {
  const auto gain = apeItem("REPLAYGAIN_TRACK_GAIN", "-6.00 dB");
  const auto before =
      apeTag(apeItem("TITLE", "Old") + apeItem("Artist", "Artist\0Second"s) + apeItem("Track", "3/12") +
                 gain + apeItem("Year", "1999") + apeItem("ArtistSort", "A"),
             6);
  const RewrittenSong song(mpegFrames() + before, {.title = "New", .artist = "Artist", .trackNumber = 3});
  EXPECT_EQ(song.rewritten().tail, apeTag(apeItem("TITLE", "New") + apeItem("Artist", "Artist\0Second"s) +
                                              apeItem("Track", "3/12") + gain + apeItem("ArtistSort", "A"),
                                          5));
  const auto same = apeTag(apeItem("Artist", "Artist") + gain, 2);
  EXPECT_EQ(RewrittenSong(mpegFrames() + same, {.artist = "Artist"}).rewritten().tail, same);
  EXPECT_EQ(RewrittenSong(mpegFrames() + apeTag(apeItem("Title", "Old"), 1), {}).rewritten().tail, "");
}

TEST(RewriteMpegTail, PicturesInAPETagsGoWhenThePictureChanges) {
  const auto picture = apeItem("Cover Art (Front)", "f\0image"s, 2);
  const auto before = mpegFrames() + apeTag(picture + apeItem("Lyrics", "la"), 2);
  EXPECT_THAT(RewrittenSong(before, {}).rewritten().tail, HasSubstr("Cover"));
  EXPECT_THAT(RewrittenSong(before, {}, {.kind = ArtworkChange::Kind::remove}).rewritten().tail,
              Not(HasSubstr("Cover")));
  EXPECT_THAT(RewrittenSong(before, {}, replaceBy("new")).rewritten().tail, Not(HasSubstr("Cover")));
}

TEST(RewriteMpegTail, LyricsStay) {
  const auto lyrics = "LYRICSBEGININD0000200LYR00002la000031LYRICS200"s;
  const auto old = id3v1("", "", "", "", 0, 255);
  EXPECT_EQ(RewrittenSong(mpegFrames() + lyrics + old, {}).rewritten().tail, lyrics + old);
}

// What others read.

constexpr const char* printWithMutagen = R"(
import sys, mutagen.id3
t = mutagen.id3.ID3(sys.argv[1])
print(t.version[1], *(t[k] for k in ('TIT2', 'TPE1', 'TALB', 'TRCK', 'TDRC')), len(t.getall('APIC')), len(t.unknown_frames), sep='|')
)";

TEST(RewrittenMpeg, ReadsTheSameInMutagenAndFFmpeg) {
  const SongTags tags{
      .title = "Grüße 日本 😀", .artist = "Ärzte", .album = "Naïve", .trackNumber = 7, .year = 1984};
  for (const int version : {2, 3, 4}) {
    const RewrittenSong song(
        tag(version, textFrame(version, version == 2 ? "TT2" : "TIT2", "Old")) + mpegFrames(200), tags,
        replaceBy("\xff\xd8\xff image"));
    EXPECT_EQ(test::python(printWithMutagen, {song.path()}),
              std::to_string(version) + "|Grüße 日本 😀|Ärzte|Naïve|7|1984|1|0\n");
    const auto probed = test::run(
        "ffprobe -v quiet -of default=nk=1:nw=1 -show_entries format_tags=title,artist,album,track,date " +
        song.path());
    for (const auto* text : {"Grüße 日本 😀\n", "Ärzte\n", "Naïve\n", "7\n", "1984\n"})
      EXPECT_THAT(probed, HasSubstr(text)) << version;
  }
}

TEST(RewrittenMpeg, OfOtherTaggersFilesKeepsTheirFramesAndTheirAudio) {
  const test::TemporaryFolder folder;
  std::vector<std::string> files{
      test::encode(folder, "ffmpeg.mp3", {"title=Old", "comment=Kept", "genre=Ambient", "composer=Kept"}),
      test::encodeWithLame(folder, "lame.mp3", "--tt Old --tc Kept --tg Ambient --id3v2-utf16 --add-id3v2"),
      test::encodeWithLame(folder, "id3v2.mp3"), test::encodeWithLame(folder, "eyed3.mp3")};
  test::run("id3v2 -t Old -c Kept:Kept:eng -g 26 " + files[2]);
  test::run("eyeD3 -Q --to-v2.4 -t Old -c Kept -G Ambient " + files[3]);
  for (const auto& file : files) {
    const RewrittenSong song(test::contentsOf(file), allTags);
    const auto printed = test::python(
        "import sys, mutagen.id3\nfor f in mutagen.id3.ID3(sys.argv[1]).values(): print(f)", {song.path()});
    for (const auto* text : {"Title\n", "Artist\n", "Album\n", "3\n", "2014\n", "Kept"})
      EXPECT_THAT(printed, HasSubstr(text)) << file;
    const auto md5 = "ffmpeg -v error -i %s -map 0:a -c copy -f md5 -"s;
    const auto audioOf = [&](const std::string& path) {
      return test::run(std::string(md5).replace(md5.find("%s"), 2, path));
    };
    EXPECT_EQ(audioOf(song.path()), audioOf(file)) << file;
  }
}

TEST(RewriteMpeg, AFileThatChangedSinceItWasInspectedIsRefused) {
  const test::TemporaryFolder folder;
  const OpenSong song(folder.write("a.mp3", tag(3, textFrame(3, "TIT2", "T")) + mpegFrames()));
  const auto inspected = song.inspect();
  folder.write("a.mp3", mpegFrames());
  EXPECT_FALSE(rewriteMpeg(song.descriptor(), inspected, {}, {}).has_value());
}

}  // namespace
}  // namespace quaverly::library
