#include <gtest/gtest.h>

#include "ReadFromMemory.h"
#include "Support/TagBytes.h"

namespace quaverly::tags {
namespace {

using namespace std::string_literals;
using test::apeItem;
using test::apeTag;
using test::id3v1;
using test::mpegFrames;
using test::tag;
using test::textFrame;

const auto plainID3v1 = id3v1("T1", "A1", "B1", "1991", 7, 17);

TEST(TagGroups, ID3v1IsReadAlone) {
  EXPECT_EQ(describedFromMemory(mpegFrames() + plainID3v1),
            "ID3v1{title=T1 artist=A1 album=B1 genre=Rock track=7 year=1991}");
}

TEST(TagGroups, FieldsOfID3v1AreCutAtZerosAndSpaces) {
  EXPECT_EQ(
      describedFromMemory(mpegFrames() + id3v1("Title   ", std::string("A\0B", 3), "   ", "    ", 0, 255)),
      "ID3v1{title=Title artist=A}");
}

TEST(TagGroups, ALongCommentInID3v1LeavesNoRoomForATrackNumber) {
  auto old = plainID3v1;
  old[125] = 'x';
  EXPECT_EQ(describedFromMemory(mpegFrames() + old),
            "ID3v1{title=T1 artist=A1 album=B1 genre=Rock year=1991}");
}

TEST(TagGroups, ID3v1SpeaksOnlyWhereNoOtherTagDoes) {
  const auto rest = textFrame(3, "TALB", "B2") + textFrame(3, "TCON", "Ambient") + textFrame(3, "TRCK", "2") +
                    textFrame(3, "TYER", "2002");
  EXPECT_EQ(describedFromMemory(tag(3, textFrame(3, "TIT2", "T2") + rest) + mpegFrames() + plainID3v1),
            "ID3v1{artist=A1}ID3v2{title=T2 album=B2 genre=Ambient track=2 year=2002}");
  const auto whole = textFrame(3, "TIT2", "T2") + textFrame(3, "TPE1", "A2") + rest;
  EXPECT_EQ(describedFromMemory(tag(3, whole) + mpegFrames() + plainID3v1),
            "ID3v2{title=T2 artist=A2 album=B2 genre=Ambient track=2 year=2002}");
}

TEST(TagGroups, APEComesBeforeID3v2) {
  const auto items =
      apeItem("Title", "T3") + apeItem("ARTIST", "A3") + apeItem("Cover Art (Front)", "f.jpg\0image"s, 2);
  const auto ape = apeTag(items, 3);
  const auto read = "APE{title=T3 artist=A3 front=image}"s;
  EXPECT_EQ(describedFromMemory(mpegFrames() + ape), read);
  EXPECT_EQ(describedFromMemory(tag(3, textFrame(3, "TIT2", "T2")) + mpegFrames() + ape),
            read + "ID3v2{title=T2}");
  EXPECT_EQ(describedFromMemory(mpegFrames() + ape + plainID3v1),
            "ID3v1{album=B1 genre=Rock track=7 year=1991}" + read);
}

TEST(TagGroups, DamagedAPETagsAreReadUpToTheDamage) {
  const auto good = apeItem("Title", "T");
  const auto hugeItem = std::string("\xff\xff\xff\x7f\0\0\0\0Artist\0A", 16);
  EXPECT_EQ(describedFromMemory(mpegFrames() + apeTag(good + hugeItem, 2)), "APE{title=T}");
  EXPECT_EQ(describedFromMemory(mpegFrames() + apeTag(good + std::string(20, 'x'), 2)), "APE{title=T}");
  const auto ape = apeTag(good, 1);
  EXPECT_EQ(describedFromMemory(mpegFrames(1) + ape.substr(ape.size() - 32)), "APE{}"s.substr(5))
      << "no items there";
}

TEST(TagGroups, LyricsBetweenTheTagsAreStepped) {
  const auto lyrics = "LYRICSBEGININD0000200LYR00002la"s;
  char length[7];
  std::snprintf(length, sizeof length, "%06zu", lyrics.size());
  EXPECT_EQ(describedFromMemory(mpegFrames() + apeTag(apeItem("Title", "T"), 1) + lyrics + length +
                                "LYRICS200" + id3v1("", "A", "", "", 0, 255)),
            "ID3v1{artist=A}APE{title=T}");
}

TEST(TagGroups, WhatIsNoAudioHasNone) {
  EXPECT_EQ(describedFromMemory(""), "");
  EXPECT_EQ(describedFromMemory("Dear diary,\n"), "");
  EXPECT_EQ(describedFromMemory(std::string(5000, '\xff')), "");
  EXPECT_EQ(describedFromMemory("A text that ends like a tag " + plainID3v1), "");
  EXPECT_EQ(describedFromMemory(plainID3v1), "");
  EXPECT_EQ(describedFromMemory("\x7f"
                                "ELF" +
                                std::string(3000, '\1')),
            "");
}

TEST(TagGroups, AudioBehindJunkIsStillAudio) {
  EXPECT_EQ(describedFromMemory(std::string(3000, 'x') + mpegFrames() + id3v1("T", "", "", "", 0, 255)),
            "ID3v1{title=T}");
}

}  // namespace
}  // namespace quaverly::tags
