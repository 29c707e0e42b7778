#include <gtest/gtest.h>

#include "Platform/AVFoundation/ID3Genre.h"
#include "Platform/AVFoundation/ID3Text.h"
#include "Platform/AVFoundation/TagContents.h"

namespace quaverly::tags {
namespace {

using namespace std::string_literals;

TEST(ID3Text, IsReadInEachOfTheFourEncodings) {
  struct Case {
    const char* about;
    std::string content;
    std::string text;
  };
  const std::vector<Case> cases{
      {"Latin-1", "\0na\xefve"s, "naïve"},
      {"UTF-16, little end first", "\1\xff\xfe\xe5\x65\x2c\x67"s, "日本"},
      {"UTF-16, big end first", "\1\xfe\xff\x65\xe5\x67\x2c"s, "日本"},
      {"without its mark", "\1T\0i\0"s, "Ti"},
      {"without its mark, big end first", "\1\0T\0i"s, "Ti"},
      {"with its mark twice", "\1\xff\xfe\xff\xfeT\0"s, "T"},
      {"with two marks that differ", "\1\xfe\xff\xff\xfeT\0"s, "T"},
      {"UTF-16 without a mark by its nature", "\2\0T\x65\xe5"s, "T日"},
      {"UTF-16 with a mark that does not belong there", "\2\xff\xfeT\0"s, "T"},
      {"beyond the first plane", "\1\xff\xfe\x3d\xd8\x00\xde"s, "😀"},
      {"half a pair", "\1\xff\xfe\x3d\xd8T\0"s, "\uFFFDT"},
      {"half a character", "\1\xff\xfeT\0i"s, "T"},
      {"UTF-8", "\3na\xc3\xafve"s, "naïve"},
      {"UTF-8 with a mark", "\3\xef\xbb\xbfT"s, "T"},
      {"damaged UTF-8", "\3T\xff"s, "T\uFFFD"},
      {"terminated", "\0T\0junk"s, "T"},
      {"several values", "\3One\0Two"s, "One"},
      {"several values, the first one empty", "\3\0Two"s, "Two"},
      {"several values in UTF-16", "\1\xff\xfeO\0\0\0\xff\xfeT\0"s, "O"},
      {"an unknown encoding", "\4T", ""},
      {"nothing", "", ""},
      {"an encoding alone", "\3", ""},
  };
  for (const auto& [about, content, text] : cases) EXPECT_EQ(textOfFrame(asBytes(content)), text) << about;
}

TEST(ID3Text, IsWrittenSoThatItReadsTheSame) {
  for (const uint8_t version : {uint8_t{2}, uint8_t{3}, uint8_t{4}}) {
    for (const auto* text : {"Title", "naïve", "日本", "😀 Ärzte"}) {
      EXPECT_EQ(textOfFrame(asBytes(encodeID3Text(version, text))), text) << int{version};
    }
  }
  EXPECT_EQ(encodeID3Text(3, "naïve"), "\0na\xefve"s);
  EXPECT_EQ(encodeID3Text(3, "日"), "\1\xff\xfe\xe5\x65"s);
  EXPECT_EQ(encodeID3Text(4, "日"), "\3日"s);
  EXPECT_EQ(encodeID3Text(2, "日"), "\1\xff\xfe\xe5\x65"s);
}

TEST(ID3Text, CharactersThatLatin1LacksBecomeQuestionMarks) {
  EXPECT_EQ(toLatin1("naïve 日本"), "na\xefve ??");
}

TEST(ID3Genre, NumbersStandForNames) {
  const std::vector<std::pair<std::string, std::optional<std::string>>> cases{
      {"(17)", "Rock"},
      {"17", "Rock"},
      {"(17)Refinement", "Refinement"},
      {"(26)(17)", "Ambient"},
      {"(RX)", "Remix"},
      {"(CR)", "Cover"},
      {"Ambient", "Ambient"},
      {"((Odd)", "(Odd)"},
      {"(Live)", "(Live)"},
      {"(255)", std::nullopt},
      {"999", std::nullopt},
      {"", std::nullopt},
      {"(17", "(17"},
      {"80s", "80s"},
      {"(26)17", "Rock"},
      {"(999)Trip-Hop", "Trip-Hop"},
      {"-5", "-5"},
  };
  for (const auto& [written, genre] : cases) EXPECT_EQ(genreOf(written), genre) << written;
}

TEST(TrackNumber, IsAsWrittenWithoutTheTotal) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"07", "07"}, {"7", "7"},   {"3/12", "3"}, {"3 / 12", "3"},  {" 7 ", "7"},
      {"", ""},     {"A1", "A1"}, {"/12", ""},   {"1234", "1234"},
  };
  for (const auto& [written, track] : cases) EXPECT_EQ(trackNumberOf(written), track) << written;
}

TEST(Year, IsThatOfTheDate) {
  const std::vector<std::pair<std::string, std::optional<std::string>>> cases{
      {"2014", "2014"},     {"2014-05-01", "2014"}, {"2014-05-01T10:11:12", "2014"},
      {"20140501", "2014"}, {"01.05.2014", "2014"}, {"(2014)", "2014"},
      {"99", std::nullopt}, {"", std::nullopt},     {"May", std::nullopt},
  };
  for (const auto& [written, year] : cases) EXPECT_EQ(yearOf(written), year) << written;
}

}  // namespace
}  // namespace quaverly::tags
