#include "Platform/UIKit/UIFont.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

#include "Platform/UIKit/TextMeasuring.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

// Widths in Arial, which Liberation Sans shares, in 2048ths of its size.
constexpr double em = 2048;
constexpr double a = 1139;
constexpr double capitalA = 1366;
constexpr double capitalV = 1366;
constexpr double space = 569;
constexpr double line = 1854 + 434 + 67;  // above the baseline, below it, between lines

class Measuring : public testing::Test {
 protected:
  test::TestDevice _device;
  /// As large as the font's own units, so that widths are whole.
  UIFont _arial = UIFont::fontWithNameSize("Arial", em);
};

class UIFontOfTheDevice : public Measuring {};

TEST_F(UIFontOfTheDevice, IsAValueOfNameAndSize) {
  EXPECT_EQ(_arial.fontName(), "Arial");
  EXPECT_EQ(_arial.pointSize(), em);
  EXPECT_EQ(_arial, UIFont::fontWithNameSize("Arial", em));
  EXPECT_NE(_arial, UIFont::fontWithNameSize("Arial", 12));
  EXPECT_NE(_arial, UIFont::fontWithNameSize("HelveticaNeue", em));
}

TEST_F(UIFontOfTheDevice, HasTheMetricsOfItsFile) {
  EXPECT_EQ(_arial.ascender(), 1854);
  EXPECT_EQ(_arial.descender(), -434);
  EXPECT_EQ(_arial.leading(), 67);
  EXPECT_EQ(_arial.lineHeight(), line);
  EXPECT_DOUBLE_EQ(UIFont::fontWithNameSize("Arial", 20).lineHeight(), line * 20 / em);
}

TEST_F(UIFontOfTheDevice, NamesThatItDoesNotKnowStandForArial) {
  EXPECT_EQ(UIFont::fileForName("Comic Sans MS"), UIFont::fileForName("Arial"));
  EXPECT_EQ(sizeOfText("aAV", UIFont::fontWithNameSize("Comic Sans MS", em)), sizeOfText("aAV", _arial));
}

TEST_F(UIFontOfTheDevice, ThreeNamesStandForThreeFiles) {
  EXPECT_TRUE(UIFont::fileForName("Arial")->ends_with("LiberationSans-Regular.ttf"));
  EXPECT_TRUE(UIFont::fileForName("HelveticaNeue")->ends_with("Inter-Regular.otf"));
  EXPECT_TRUE(UIFont::fileForName("HelveticaNeue-UltraLight")->ends_with("Inter-Thin.otf"));
  const auto width = [](const char* name) {
    return sizeOfText("Quaverly", UIFont::fontWithNameSize(name, em)).width;
  };
  EXPECT_NE(width("Arial"), width("HelveticaNeue"));
  EXPECT_LT(width("HelveticaNeue-UltraLight"), width("HelveticaNeue"));
}

TEST_F(Measuring, ALineIsAsWideAsItsLettersAndAsHighAsItsFont) {
  EXPECT_EQ(sizeOfText("a", _arial), (CGSize{a, line}));
  EXPECT_EQ(sizeOfText("aaa", _arial), (CGSize{3 * a, line}));
  EXPECT_EQ(sizeOfText("a a ", _arial), (CGSize{2 * a + 2 * space, line}));
}

TEST_F(Measuring, LettersMoveTogetherWhereTheFontSaysSo) {
  EXPECT_LT(sizeOfText("AV", _arial).width, capitalA + capitalV);
  EXPECT_GT(sizeOfText("AV", _arial).width, 0.85 * (capitalA + capitalV));
}

TEST_F(Measuring, SizesAreRoundedUpToWholePoints) {
  const auto font = UIFont::fontWithNameSize("Arial", 20);
  EXPECT_EQ(sizeOfText("aaa", font), (CGSize{std::ceil(60 * a / em), 23}));
  EXPECT_EQ(sizeOfTextInWidth("a\na\na", font, 100), (CGSize{12, std::ceil(60 * line / em)}));
}

TEST_F(Measuring, AnEmptyTextTakesNoRoom) {
  EXPECT_EQ(sizeOfText("", _arial), CGSize());
  EXPECT_EQ(sizeOfTextInWidth("", _arial, 100), CGSize());
}

TEST_F(Measuring, OnOneLineBreaksCountAsSpaces) {
  EXPECT_EQ(sizeOfText("a\na\ta\ra", _arial), sizeOfText("a a a a", _arial));
}

TEST_F(Measuring, WhatTheFontLacksIsOneEmWide) {
  EXPECT_EQ(sizeOfText("日本", _arial).width, 2 * em);
  EXPECT_EQ(sizeOfText("a日a", _arial).width, em + 2 * a);
  EXPECT_EQ(sizeOfText("👩‍👩‍👧", _arial).width, em) << "one picture of several characters";
  EXPECT_EQ(sizeOfText("日", _arial).height, line);
}

TEST_F(Measuring, MarksBelongToTheirLetter) {
  EXPECT_EQ(sizeOfText("e\xcc\x81", _arial), sizeOfText("é", _arial));
}

TEST_F(Measuring, BytesThatAreNoTextDoNoHarm) {
  EXPECT_GT(sizeOfText("a\xff\xfe", _arial).width, a);
  EXPECT_GT(sizeOfTextInWidth("a\xff \xfe\xe6", _arial, 3 * a).width, a);
}

TEST_F(Measuring, ADeviceWithoutFontsTakesAnEmForEachCharacter) {
  _device->fontFiles.clear();
  EXPECT_FALSE(UIFont::fileForName("Arial"));
  EXPECT_EQ(sizeOfText("abc", UIFont::fontWithNameSize("Arial", 10)), (CGSize{30, 10}));
  _device->fontFiles = {{"Arial", "/no/such/file"}};
  EXPECT_EQ(sizeOfText("abc", UIFont::fontWithNameSize("Arial", 10)), (CGSize{30, 10}));
}

class Wrapping : public Measuring {};

TEST_F(Wrapping, LinesBreakAtSpacesWhichThenTakeNoRoom) {
  EXPECT_EQ(sizeOfTextInWidth("aaa aa a", _arial, 4 * a), (CGSize{3 * a + space, 2 * line}));
  EXPECT_EQ(sizeOfTextInWidth("aa  aa", _arial, 3 * a), (CGSize{2 * a, 2 * line}));
  EXPECT_EQ(sizeOfTextInWidth("aa aa aa", _arial, 4 * a + space), (CGSize{4 * a + space, 2 * line}));
  EXPECT_EQ(sizeOfTextInWidth("aa aa aa", _arial, 4 * a + space - 1), (CGSize{2 * a, 3 * line}));
}

TEST_F(Wrapping, ATextThatFitsStaysOnOneLine) {
  EXPECT_EQ(sizeOfTextInWidth("aaaa", _arial, 4 * a), (CGSize{4 * a, line}));
  EXPECT_EQ(sizeOfTextInWidth("aa aa", _arial, 1e9), sizeOfText("aa aa", _arial));
}

TEST_F(Wrapping, WordsThatAreTooLongBreakWithin) {
  EXPECT_EQ(sizeOfTextInWidth("aaaaaaa", _arial, 3 * a), (CGSize{3 * a, 3 * line}));
  EXPECT_EQ(sizeOfTextInWidth("a aaaaa", _arial, 3 * a), (CGSize{3 * a, 3 * line})) << "on a line of its own";
  EXPECT_EQ(sizeOfTextInWidth("aaaa a", _arial, 3 * a), (CGSize{3 * a, 2 * line})) << "and goes on behind it";
}

TEST_F(Wrapping, NoLineIsTooNarrowForOneLetter) {
  EXPECT_EQ(sizeOfTextInWidth("aaa", _arial, 1), (CGSize{a, 3 * line}));
}

TEST_F(Wrapping, TheTextBreaksLinesItself) {
  EXPECT_EQ(sizeOfTextInWidth("a\naa\r\na\ra", _arial, 9 * a), (CGSize{2 * a, 4 * line}));
  EXPECT_EQ(sizeOfTextInWidth("a\n\na", _arial, 9 * a).height, 3 * line);
  EXPECT_EQ(sizeOfTextInWidth("a\n", _arial, 9 * a).height, 2 * line);
  EXPECT_EQ(sizeOfTextInWidth("\n", _arial, 9 * a), (CGSize{0, 2 * line}));
}

TEST_F(Wrapping, LinesBehindTheLastAllowedOneAreLeftOut) {
  EXPECT_EQ(sizeOfTextInWidth("a\naa\naaa", _arial, 9 * a, 2), (CGSize{2 * a, 2 * line}));
  EXPECT_EQ(sizeOfTextInWidth("a\naa\naaa", _arial, 9 * a, 0).height, 3 * line);
  EXPECT_EQ(sizeOfTextInWidth("a\naa", _arial, 9 * a, 7).height, 2 * line);
}

TEST_F(Wrapping, AWidthThatIsNoneLimitsNothing) {
  for (const double width : {0.0, -1.0}) {
    EXPECT_EQ(sizeOfTextInWidth("aa aa", _arial, width), sizeOfText("aa aa", _arial));
  }
}

TEST_F(Wrapping, HoldsForEveryTextAndWidth) {
  const std::string text = "aa a aaaa a aaa aaaaaaa a";
  for (double width = 1; width < 26 * a; width += 100) {
    const auto size = sizeOfTextInWidth(text, _arial, width);
    EXPECT_LE(size.width, std::max(width, a)) << width;
    EXPECT_GE(size.width * (size.height / line), 19 * a) << "all letters have a place, at " << width;
  }
}

TEST_F(Measuring, TheSameLineAgainCostsNothingToNotice) {
  std::string text;
  for (int i = 0; i < 100; ++i) text += "wörd ";
  sizeOfText(text, _arial);
  const auto timeOf = [](auto measure) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 500; ++i) measure(i);
    return std::chrono::steady_clock::now() - start;
  };
  const auto again = timeOf([&](int) { sizeOfText(text, _arial); });
  const auto anew = timeOf([&](int i) { sizeOfText(text + std::to_string(i), _arial); });
  EXPECT_LT(again * 3, anew);
}

TEST_F(Measuring, ManyLinesAreMeasuredAsOneIs) {
  for (int i = 0; i < 10'000; ++i) sizeOfText(std::to_string(i), _arial);
  EXPECT_EQ(sizeOfText("aaa", _arial), (CGSize{3 * a, line}));
  EXPECT_EQ(sizeOfText(std::string(5000, 'a'), _arial).width, 5000 * a);
}

}  // namespace
}  // namespace quaverly
