#include "Platform/Foundation/NSJSONSerialization.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "Support/Mutations.h"

namespace quaverly {
namespace {

std::optional<NSPlainValue> read(std::string_view text) {
  return NSJSONSerialization::JSONObjectWithText(text);
}

std::string rewritten(std::string_view text) {
  const auto value = read(text);
  return value ? NSJSONSerialization::prettyPrintedTextWithJSONObject(*value) : "damaged";
}

TEST(NSJSONSerialization, WritesWhatItReadInItsOrder) {
  const std::string text =
      "{\n  \"title\": \"Über \\\"uns\\\" 🎵\",\n  \"enabled\": true,\n  \"also\": null,\n  \"a\": [\n    "
      "1,\n    "
      "{}\n  ],\n  \"nothing\": [],\n  \"z\": {\n    \"b\": false,\n    \"a\": \"\\u0001\\n\"\n  }\n}\n";
  EXPECT_EQ(rewritten(text), text);
}

TEST(NSJSONSerialization, NumbersKeepTheirDigits) {
  for (const char* number : {"0", "-1", "9223372036854775807", "-9223372036854775808", "18446744073709551615",
                             "0.1", "1.10", "1e3", "1E-7", "-0.0", "2.2250738585072014e-308",
                             "1.7976931348623157e308", "123456789012345678901234567890",
                             "3.14159265358979323846264338327950288", "1e400", "-1.50E+400", "1e-400"}) {
    EXPECT_EQ(rewritten(number), std::string(number) + "\n");
  }
  const std::string among = "[\n  1.0,\n  \"1e400 \\\" 2\",\n  1e400,\n  -3\n]\n";
  EXPECT_EQ(rewritten(among), among);
}

TEST(NSJSONSerialization, AKeyThatComesTwiceStaysAndCountsTheLastTime) {
  auto value = read("{\"enabled\": 1, \"x\": 0, \"enabled\": 2}");
  ASSERT_TRUE(value && value->dictionary());
  EXPECT_EQ(value->dictionary()->objectForKey("enabled").stringValue(), "2");
  value->dictionary()->setObjectForKey(false, "enabled");
  EXPECT_EQ(NSJSONSerialization::prettyPrintedTextWithJSONObject(*value),
            "{\n  \"enabled\": 1,\n  \"x\": 0,\n  \"enabled\": false\n}\n");
}

TEST(NSJSONSerialization, WhatIsNoJSONTextIsDamaged) {
  for (const char* text :
       {"",        " ",      "{",       "{\"a\":}",    "{\"a\":1,}", "[1 2]",   "{} {}",
        "nul",     "01",     "+1",      ".5",          "NaN",        "1.e999",  "1e+",
        "-",       "01e999", "1e999e1", "\"\\ud800\"", "\"\xff\"",   "{'a':1}", "{\"a\":1} // comment",
        "\"a\nb\""}) {
    EXPECT_FALSE(read(text)) << text;
  }
}

TEST(NSJSONSerialization, AByteOrderMarkIsNoDamage) {
  EXPECT_TRUE(read("\uFEFF{}"));
}

TEST(NSJSONSerialization, TooDeepAndTooLongAreDamagedAtOnce) {
  const size_t deepest = NSJSONSerialization::deepestNesting;
  EXPECT_TRUE(read(std::string(deepest, '[') + std::string(deepest, ']')));
  EXPECT_FALSE(read(std::string(deepest + 1, '[') + std::string(deepest + 1, ']')));
  EXPECT_FALSE(read(std::string(100'000, '[')));
  std::string objects;
  for (int i = 0; i < 100'000; ++i) objects += "{\"a\":";
  EXPECT_FALSE(read(objects));
  const size_t longest = NSJSONSerialization::largestText;
  EXPECT_TRUE(read("{}" + std::string(longest - 2, ' ')));
  EXPECT_FALSE(read("{}" + std::string(longest - 1, ' ')));
}

TEST(NSJSONSerialization, ManyKeysTakeNoTimeToSpeakOf) {
  std::string text = "{\"k\":0";
  for (int i = 0; i < 100'000; ++i) text += ",\"k\":1";
  ASSERT_TRUE(read(text + "}"));
}

TEST(NSJSONSerialization, MutatedTextsHarmNobody) {
  const std::string whole = rewritten("{\"a\": [1.5, true, null, \"é\\u00e9\"], \"b\": {\"c\": -12}}");
  std::mt19937 random(std::random_device{}());
  for (int i = 0; i < 20'000; ++i) {
    auto text = whole.substr(0, random() % (whole.size() + 1));
    if (!text.empty()) text[random() % text.size()] = static_cast<char>(random());
    const auto value = read(text);
    if (!value) continue;
    EXPECT_EQ(read(NSJSONSerialization::prettyPrintedTextWithJSONObject(*value)), *value);
  }
}

TEST(NSPlainValue, TruthIsReadOffTextsAndNumbersToo) {
  for (const auto& value :
       {NSPlainValue(true), NSPlainValue(NSNumber("2")), NSPlainValue(NSNumber("0.5")), NSPlainValue("YES"),
        NSPlainValue("true"), NSPlainValue(" +01"), NSPlainValue("t")})
    EXPECT_TRUE(value.boolValue()) << value.stringValue();
  for (const auto& value : {NSPlainValue(false), NSPlainValue(NSNumber("0")), NSPlainValue(NSNumber("-0.0")),
                            NSPlainValue("NO"), NSPlainValue(""), NSPlainValue("0"), NSPlainValue(),
                            NSPlainValue(NSArray{true}), NSPlainValue(NSDictionary{{"a", true}})})
    EXPECT_FALSE(value.boolValue()) << value.stringValue();
}

TEST(NSNumber, BeyondADoubleIsInfiniteOrNothing) {
  EXPECT_EQ(NSNumber("1e999").doubleValue(), std::numeric_limits<double>::infinity());
  EXPECT_EQ(NSNumber("-1e999").doubleValue(), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(NSNumber("1e-999").doubleValue(), 0);
  EXPECT_EQ(NSNumber(0.1).stringValue(), "0.1");
}

}  // namespace
}  // namespace quaverly
