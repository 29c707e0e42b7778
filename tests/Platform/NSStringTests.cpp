#include "Platform/Foundation/NSString.h"

#include <gtest/gtest.h>

#include <limits>

namespace quaverly {
namespace {

TEST(NSString, LengthsCountUTF16Units) {
  EXPECT_EQ(NSStringLength(""), 0u);
  EXPECT_EQ(NSStringLength("2014"), 4u);
  EXPECT_EQ(NSStringLength("\u00E9\u00E9\u00E9"), 3u);
  EXPECT_EQ(NSStringLength("e\u0301"), 2u);
  EXPECT_EQ(NSStringLength("\u97F3\u697D"), 2u);
  EXPECT_EQ(NSStringLength("\U0001F3B5"), 2u);
  EXPECT_EQ(NSStringLength("a\U0001F3B5b"), 4u);
}

TEST(NSString, AByteThatIsNotUTF8CountsAsOneUnit) {
  EXPECT_EQ(NSStringLength("\xFF"), 1u);
  EXPECT_EQ(NSStringLength("a\xE2\x82"), 3u);
  EXPECT_EQ(NSStringLength("\xC0\xAF"), 2u);
  EXPECT_EQ(NSStringLength("\xED\xA0\x80"), 3u);
}

TEST(NSString, IsCutAtUTF16UnitsAndNeverWithinACharacter) {
  EXPECT_EQ(NSStringSubstringToIndex("caf\u00E9s", 4), "caf\u00E9");
  EXPECT_EQ(NSStringSubstringToIndex("a\U0001F3B5b", 3), "a\U0001F3B5");
  EXPECT_EQ(NSStringSubstringToIndex("a\U0001F3B5b", 2), "a");
  EXPECT_EQ(NSStringSubstringToIndex("abc", 0), "");
  EXPECT_EQ(NSStringSubstringToIndex("abc", 9), "abc");
}

TEST(NSString, IntValueReadsWhiteSpaceSignAndDigits) {
  EXPECT_EQ(NSStringIntValue("7"), 7);
  EXPECT_EQ(NSStringIntValue("07"), 7);
  EXPECT_EQ(NSStringIntValue(" \t\n2014-05-01"), 2014);
  EXPECT_EQ(NSStringIntValue("-12x"), -12);
  EXPECT_EQ(NSStringIntValue("+3"), 3);
  EXPECT_EQ(NSStringIntValue("3/12"), 3);
}

TEST(NSString, IntValueWithoutDigitsIsZero) {
  for (const char* text : {"", " ", "-", "+", "+-1", "-+1", "- 1", "x1", "\u0661"})
    EXPECT_EQ(NSStringIntValue(text), 0) << text;
}

TEST(NSString, IntValueSaturatesAtThe32BitLimits) {
  EXPECT_EQ(NSStringIntValue("2147483647"), 2147483647);
  EXPECT_EQ(NSStringIntValue("2147483648"), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(NSStringIntValue("99999999999999999999999999"), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(NSStringIntValue("-2147483648"), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(NSStringIntValue("-99999999999999999999999999"), std::numeric_limits<int32_t>::min());
}

TEST(NSString, FloatValueIsTheLongestDecimalPrefixInSinglePrecision) {
  EXPECT_EQ(NSStringFloatValue("8.4"), 8.4f);
  EXPECT_EQ(NSStringFloatValue("8.4.1"), 8.4f);
  EXPECT_EQ(NSStringFloatValue("8.29"), 8.29f);
  EXPECT_EQ(NSStringFloatValue("8.3"), 8.3f);
  EXPECT_EQ(NSStringFloatValue("12"), 12.0f);
  EXPECT_EQ(NSStringFloatValue(" +9.0 beta"), 9.0f);
  EXPECT_EQ(NSStringFloatValue("-.5"), -0.5f);
  EXPECT_EQ(NSStringFloatValue("8,4"), 8.0f);
  EXPECT_EQ(NSStringFloatValue("8e2"), 8.0f);
  // Closer to the upper of two floats, but halfway and rounded down when read as a double first.
  EXPECT_EQ(NSStringFloatValue("1.000000059604644775390625000001"), 1.00000011920928955078125f);
}

TEST(NSString, FloatValueOfWhatIsNoNumberIsZero) {
  for (const char* text : {"", ".", "-", "inf", "nan", "-infinity", "e5", "x8"})
    EXPECT_EQ(NSStringFloatValue(text), 0.0f) << text;
  EXPECT_EQ(NSStringFloatValue("0x10"), 0.0f);
}

TEST(NSString, FloatValueBeyondTheRangeIsInfiniteOrZero) {
  const std::string zeros(60, '0');
  EXPECT_EQ(NSStringFloatValue("1" + zeros), std::numeric_limits<float>::infinity());
  EXPECT_EQ(NSStringFloatValue("-1" + zeros), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(NSStringFloatValue("0." + zeros + "1"), 0.0f);
}

TEST(NSString, ReplacementsStandForWhatIsNotUTF8) {
  EXPECT_EQ(NSStringWithReplacements("caf\u00E9 \U0001F3B5"), "caf\u00E9 \U0001F3B5");
  EXPECT_EQ(NSStringWithReplacements("caf\xE9.mp3"), "caf\uFFFD.mp3");
  EXPECT_EQ(NSStringWithReplacements("\xFF\xFE"), "\uFFFD\uFFFD");
  EXPECT_EQ(NSStringWithReplacements("a\xE2\x82"), "a\uFFFD");
}

TEST(NSString, UTF8IsToldFromOtherBytes) {
  for (const char* text : {"", "abc", "\u00E9", "\uFFFD", "\U0010FFFF"}) EXPECT_TRUE(NSStringIsUTF8(text));
  for (const char* bytes : {"\x80", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "ok\xFF"})
    EXPECT_FALSE(NSStringIsUTF8(bytes));
}

TEST(NSString, PathsAreJoinedWithOneSlash) {
  EXPECT_EQ(NSStringByAppendingPathComponent("/var", "log"), "/var/log");
  EXPECT_EQ(NSStringByAppendingPathComponent("/var/", "log"), "/var/log");
  EXPECT_EQ(NSStringByAppendingPathComponent("/var//", "/log/"), "/var/log");
  EXPECT_EQ(NSStringByAppendingPathComponent("/", "var"), "/var");
  EXPECT_EQ(NSStringByAppendingPathComponent("", "var"), "var");
  EXPECT_EQ(NSStringByAppendingPathComponent("/var", ""), "/var");
  EXPECT_EQ(NSStringByAppendingPathComponent("/var/", "/"), "/var");
  EXPECT_EQ(NSStringByAppendingPathComponent("/a", "\xFF\xFE"), "/a/\xFF\xFE");
}

TEST(NSString, DeletingTheLastPathComponentGivesTheParent) {
  EXPECT_EQ(NSStringByDeletingLastPathComponent("/a/b"), "/a");
  EXPECT_EQ(NSStringByDeletingLastPathComponent("/a/b/"), "/a");
  EXPECT_EQ(NSStringByDeletingLastPathComponent("/a//b"), "/a");
  EXPECT_EQ(NSStringByDeletingLastPathComponent("/a"), "/");
  EXPECT_EQ(NSStringByDeletingLastPathComponent("/"), "/");
  EXPECT_EQ(NSStringByDeletingLastPathComponent("//"), "/");
  EXPECT_EQ(NSStringByDeletingLastPathComponent("a/b"), "a");
  EXPECT_EQ(NSStringByDeletingLastPathComponent("a"), "");
  EXPECT_EQ(NSStringByDeletingLastPathComponent(""), "");
}

TEST(NSString, TheLastPathComponentIgnoresTrailingSlashes) {
  EXPECT_EQ(NSStringLastPathComponent("/a/b"), "b");
  EXPECT_EQ(NSStringLastPathComponent("/a/b/"), "b");
  EXPECT_EQ(NSStringLastPathComponent("b"), "b");
  EXPECT_EQ(NSStringLastPathComponent("/"), "/");
  EXPECT_EQ(NSStringLastPathComponent("//"), "/");
  EXPECT_EQ(NSStringLastPathComponent(""), "");
}

}  // namespace
}  // namespace quaverly
