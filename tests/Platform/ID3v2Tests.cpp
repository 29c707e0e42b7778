#include <gtest/gtest.h>

#include "ReadFromMemory.h"
#include "Support/TagBytes.h"

namespace quaverly::tags {
namespace {

using namespace std::string_literals;
using test::deflated;
using test::frame;
using test::number;
using test::pictureFrame;
using test::stuffed;
using test::tag;
using test::textFrame;

struct Case {
  const char* about;
  std::string file;
  std::string contents;
};

/// Each file read as a table says.
void expectContents(const std::vector<Case>& cases) {
  for (const auto& [about, file, contents] : cases) EXPECT_EQ(describedFromMemory(file), contents) << about;
}

std::string title(int version, const std::string& text) {
  return textFrame(version, version == 2 ? "TT2" : "TIT2", text);
}

TEST(ID3v2, EveryVersionHasItsOwnNamesForTheSameFields) {
  const auto fields = "ID3v2{title=T artist=A album=B genre=Ambient track=07 year=2014 front=image}"s;
  std::string frames;
  for (const auto& [id, text] : {std::pair("TT2", "T"),
                                 {"TP1", "A"},
                                 {"TAL", "B"},
                                 {"TCO", "(26)"},
                                 {"TRK", "07/12"},
                                 {"TYE", "2014"}})
    frames += textFrame(2, id, text);
  EXPECT_EQ(describedFromMemory(tag(2, frames + pictureFrame(2, "image"))), fields);
  for (const int version : {3, 4}) {
    frames.clear();
    const char* year = version == 3 ? "TYER" : "TDRC";
    for (const auto& [id, text] : {std::pair("TIT2", "T"),
                                   {"TPE1", "A"},
                                   {"TALB", "B"},
                                   {"TCON", "26"},
                                   {"TRCK", "07/12"},
                                   {year, "2014"}})
      frames += textFrame(version, id, text);
    EXPECT_EQ(describedFromMemory(tag(version, frames + pictureFrame(version, "image"))), fields) << version;
  }
}

TEST(ID3v2, LaterFramesWinButEmptyOnesDoNot) {
  expectContents({
      {"a second title", tag(3, title(3, "One") + title(3, "Two")), "ID3v2{title=Two}"},
      {"an empty second title", tag(3, title(3, "One") + title(3, "")), "ID3v2{title=One}"},
      {"a track number that is there and empty", tag(3, textFrame(3, "TRCK", "")), "ID3v2{track=}"},
      {"an empty year", tag(3, textFrame(3, "TYER", "")), ""},
      {"frames that no field is for",
       tag(3, textFrame(3, "TSSE", "x") + textFrame(3, "TPE2", "x") + textFrame(3, "COMM", "x")), ""},
  });
}

TEST(ID3v2, TheReleaseTimeIsTheYearWhereNothingElseIs) {
  const auto release = textFrame(4, "TDRL", "2015-01-01");
  const auto recording = textFrame(4, "TDRC", "2014");
  expectContents({
      {"alone", tag(4, release), "ID3v2{year=2015}"},
      {"behind", tag(4, recording + release), "ID3v2{year=2014}"},
      {"in front", tag(4, release + recording), "ID3v2{year=2014}"},
  });
}

TEST(ID3v2, PicturesAreReadWithTheirKinds) {
  const auto utf16Description = frame(3, "APIC",
                                      "\1image/png\0\4\xff\xfe"
                                      "d\0\0\0pixels"s);
  const auto link = frame(3, "APIC", "\0-->\0\3\0http://example.org/"s);
  expectContents({
      {"kinds", tag(3, pictureFrame(3, "a", 3) + pictureFrame(3, "b", 4)), "ID3v2{front=a picture4=b}"},
      {"a description of two-byte characters", tag(3, utf16Description), "ID3v2{picture4=pixels}"},
      {"a link to a picture", tag(3, link), ""},
      {"a description longer than usual",
       tag(3, frame(3, "APIC", "\0image/png\0\3"s + std::string(5000, 'd') + "\0pixels"s)),
       "ID3v2{front=pixels}"},
      {"a description without an end", tag(3, frame(3, "APIC", "\0image/png\0\3"s + std::string(5000, 'd'))),
       ""},
      {"in a group", tag(3, frame(3, "APIC", "g\0image/png\0\3\0pixels"s, 0x0020)), "ID3v2{front=pixels}"},
      {"behind each other and far apart",
       tag(3, pictureFrame(3, std::string(20'000, 'a'), 4) + title(3, "T") + pictureFrame(3, "b")),
       "ID3v2{title=T picture4=" + std::string(20'000, 'a') + " front=b}"},
      {"an empty picture", tag(3, pictureFrame(3, "")), ""},
      {"a format without an end", tag(3, frame(3, "APIC", "\0image/jpeg"s)), ""},
      {"nothing but an encoding", tag(3, frame(3, "APIC", "\0"s)), ""},
      {"nothing behind the kind", tag(3, frame(3, "APIC", "\0image/jpeg\0\3"s)), ""},
      {"an unknown encoding", tag(3, frame(3, "APIC", "\7image/jpeg\0\3\0x"s)), ""},
  });
}

TEST(ID3v2, StuffingIsTakenOut) {
  const auto bytes = "\xff\xe0 \xff\0 \xff"s;
  const auto asWritten = "ID3v2{front=" + bytes + "}";
  const auto body = pictureFrame(4, bytes).substr(10);
  const auto lengthAndStuffed = number(body.size(), 4, 7) + stuffed(body);
  expectContents({
      {"2.2: the whole tag", tag(2, stuffed(pictureFrame(2, bytes)), 0x80), asWritten},
      {"2.3: the whole tag", tag(3, stuffed(pictureFrame(3, bytes)), 0x80), asWritten},
      {"2.4: said by the tag", tag(4, frame(4, "APIC", stuffed(body)), 0x80), asWritten},
      {"2.4: said by the frame", tag(4, frame(4, "APIC", stuffed(body), 0x0002)), asWritten},
      {"2.4: with the original length", tag(4, frame(4, "APIC", lengthAndStuffed, 0x0003)), asWritten},
      {"2.4: said, but not done", tag(4, frame(4, "APIC", number(body.size(), 4, 7) + body, 0x0003)),
       asWritten},
      {"2.4: frames behind it", tag(4, frame(4, "APIC", stuffed(body), 0x0002) + title(4, "T")),
       "ID3v2{title=T front=" + bytes + "}"},
  });
}

TEST(ID3v2, CompressedFramesAreInflated) {
  const auto text = "\0"s + std::string(300, 'x');
  const auto read = "ID3v2{title=" + std::string(300, 'x') + "}";
  const auto length = number(text.size(), 4);
  const auto syncsafeLength = number(text.size(), 4, 7);
  expectContents({
      {"2.3", tag(3, frame(3, "TIT2", length + deflated(text), 0x0080)), read},
      {"2.3 in a group", tag(3, frame(3, "TIT2", length + "g" + deflated(text), 0x00a0)), read},
      {"2.4", tag(4, frame(4, "TIT2", syncsafeLength + deflated(text), 0x0009)), read},
      {"2.4 in a group", tag(4, frame(4, "TIT2", "g" + syncsafeLength + deflated(text), 0x0049)), read},
      {"2.4 without the length", tag(4, frame(4, "TIT2", deflated(text), 0x0008)), read},
      {"2.4 stuffed as well", tag(4, frame(4, "TIT2", syncsafeLength + stuffed(deflated(text)), 0x000b)),
       read},
      {"a grouped frame that is not compressed", tag(4, frame(4, "TIT2", "g\0T"s, 0x0040)), "ID3v2{title=T}"},
      {"a length for nothing", tag(4, frame(4, "TIT2", number(2, 4, 7) + "\0T"s, 0x0001)), "ID3v2{title=T}"},
      {"a damaged one",
       tag(3, frame(3, "TIT2", length + deflated(text).substr(0, 8), 0x0080) + textFrame(3, "TPE1", "A")),
       "ID3v2{artist=A}"},
      {"an encrypted one", tag(3, frame(3, "TIT2", "m" + text, 0x0040) + textFrame(3, "TPE1", "A")),
       "ID3v2{artist=A}"},
      {"flags without the bytes they announce",
       tag(4, frame(4, "TIT2", "ab", 0x0009) + textFrame(4, "TPE1", "A")), "ID3v2{artist=A}"},
  });
}

TEST(ID3v2, ExtendedHeadersFootersAndPaddingAreSkipped) {
  const auto extended23 = number(6, 4) + number(0, 2) + number(500, 4);
  const auto extended24 = number(6, 4, 7) + "\1\0"s;
  const auto footer = "3DI" + tag(4, title(4, "T"), 0x10).substr(3, 7);
  expectContents({
      {"2.3", tag(3, extended23 + title(3, "T"), 0x40), "ID3v2{title=T}"},
      {"2.4", tag(4, extended24 + title(4, "T"), 0x40), "ID3v2{title=T}"},
      {"announced, and not there", tag(3, title(3, "T"), 0x40), "ID3v2{title=T}"},
      {"longer than the tag", tag(3, number(5000, 4) + title(3, "T"), 0x40), "ID3v2{title=T}"},
      {"padding", tag(3, title(3, "T") + std::string(500, '\0')), "ID3v2{title=T}"},
      {"what an earlier tag left in the padding",
       tag(3, title(3, "T") + std::string(50, '\0') + title(3, "Old")), "ID3v2{title=T}"},
      {"a footer", tag(4, title(4, "T"), 0x10) + footer + test::mpegFrames(), "ID3v2{title=T}"},
  });
}

TEST(ID3v2, SizesAreReadTheWayTheyWereMeant) {
  const std::string longText(200, 'x');
  const auto plainSize = "TIT2" + number(201, 4) + "\0\0\0"s + longText;
  const auto syncsafeSize = "TIT2" + number(201, 4, 7) + "\0\0\0"s + longText;
  const auto both = "ID3v2{title=" + longText + " artist=A}";
  expectContents({
      {"2.4 with a plain size", tag(4, plainSize + textFrame(4, "TPE1", "A")), both},
      {"2.4 with a plain size before padding", tag(4, plainSize + std::string(30, '\0')),
       "ID3v2{title=" + longText + "}"},
      {"2.4 as it should be", tag(4, syncsafeSize + textFrame(4, "TPE1", "A")), both},
      {"2.3 with a syncsafe size", tag(3, syncsafeSize + textFrame(3, "TPE1", "A")), both},
      {"ids of 2.2 in a tag of 2.3", tag(3, frame(3, "TT2\0"s, "\0T"s) + textFrame(3, "TPE1", "A")),
       "ID3v2{title=T artist=A}"},
  });
}

TEST(ID3v2, DamagedFramesAreSkipped) {
  const auto good = textFrame(3, "TPE1", "A") + textFrame(3, "TALB", "B");
  const auto hugeFrame = "TIT2" + number(0x7fffffff, 4) + "\0\0\0T"s;
  const auto noId = "T\1T2" + number(2, 4) + "\0\0\0T"s;
  expectContents({
      {"a size beyond the tag", tag(3, hugeFrame + good), "ID3v2{artist=A album=B}"},
      {"an id that is none", tag(3, noId + good), "ID3v2{artist=A album=B}"},
      {"bytes between frames", tag(3, title(3, "T") + "\x1\x2\x3" + good), "ID3v2{title=T artist=A album=B}"},
      {"an unknown encoding", tag(3, frame(3, "TIT2", "\7T") + good), "ID3v2{artist=A album=B}"},
      {"an empty frame", tag(3, frame(3, "TIT2", "") + good), "ID3v2{artist=A album=B}"},
      {"2.2", tag(2, "TT2\xff\xff\xff"s + textFrame(2, "TP1", "A")), "ID3v2{artist=A}"},
      {"half a frame at the end", tag(3, good + title(3, "Title").substr(0, 12)), "ID3v2{artist=A album=B}"},
  });
}

TEST(ID3v2, ATagBeyondTheEndOfTheFileIsCut) {
  const auto whole = tag(3, textFrame(3, "TPE1", "A") + title(3, "Title"));
  EXPECT_EQ(describedFromMemory(whole), "ID3v2{title=Title artist=A}");
  EXPECT_EQ(describedFromMemory(whole.substr(0, whole.size() - 1)), "ID3v2{artist=A}");
  EXPECT_EQ(describedFromMemory("ID3\3\0\0\x7f\x7f\x7f\x7f"s + textFrame(3, "TPE1", "A")), "ID3v2{artist=A}");
  for (size_t length = 0; length < whole.size(); ++length) describedFromMemory(whole.substr(0, length));
}

TEST(ID3v2, OfSeveralTagsInARowTheFirstWins) {
  const auto first = tag(4, title(4, "First"));
  const auto second = tag(3, title(3, "Second") + textFrame(3, "TPE1", "A"));
  EXPECT_EQ(describedFromMemory(first + second + test::mpegFrames()), "ID3v2{title=First artist=A}");
}

TEST(ID3v2, ATagBehindTheAudioIsFoundByItsFooter) {
  const auto appended = tag(4, title(4, "End"), 0x10);
  const auto footer = "3DI" + appended.substr(3, 7);
  EXPECT_EQ(describedFromMemory(test::mpegFrames() + appended + footer), "ID3v2{title=End}");
  EXPECT_EQ(describedFromMemory(tag(4, title(4, "Front")) + test::mpegFrames() + appended + footer),
            "ID3v2{title=Front}");
}

TEST(ID3v2, TagsThatNobodyCanReadSayNothing) {
  expectContents({
      {"a newer version", tag(5, title(4, "T")) + test::mpegFrames(), ""},
      {"the compression of 2.2, which was never defined", tag(2, title(2, "T"), 0x40) + test::mpegFrames(),
       ""},
      {"a size that is not syncsafe", "ID3\3\0\0\x80\0\0\0"s + title(3, "T"), ""},
  });
}

TEST(ID3v2, MoreFramesThanAnySongHasAreNotRead) {
  std::string frames;
  for (int i = 0; i < 1000; ++i) frames += title(3, std::to_string(i));
  EXPECT_EQ(describedFromMemory(tag(3, frames)), "ID3v2{title=499}");
}

TEST(ID3v2, ATextLongerThanAScreenIsNotRead) {
  EXPECT_EQ(describedFromMemory(tag(3, title(3, std::string(40'000, 'x')) + textFrame(3, "TPE1", "A"))),
            "ID3v2{artist=A}");
}

}  // namespace
}  // namespace quaverly::tags
