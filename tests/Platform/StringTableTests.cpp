#include "Platform/Foundation/StringTables/StringTable.h"

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cstdlib>
#include <random>

namespace quaverly {
namespace {

/// The text of the key "k"; "damaged" and "no key" for what the names say.
std::string textOfK(std::string_view table) {
  const auto parsed = StringTable::parse(table);
  if (!parsed) return "damaged";
  const auto* text = parsed->find("k");
  return text ? *text : "no key";
}

struct Case {
  std::string table;
  std::string text;
};

void expectTexts(std::initializer_list<Case> cases) {
  for (const auto& [table, text] : cases) EXPECT_EQ(textOfK(table), text) << table;
}

TEST(StringTable, PairsHaveQuotedOrBareKeysAndTexts) {
  expectTexts({
      {R"("k" = "Import";)", "Import"},
      {R"(k = Import;)", "Import"},
      {R"('k'="it \"is\"";)", "it \"is\""},
      {R"("k"='"';)", "\""},
      {R"(k = com.tolmarin:a/b-c_$1;)", "com.tolmarin:a/b-c_$1"},
      {R"(k;)", "k"},
      {R"("k" = "";)", ""},
      {R"(j = x; k = y; l = z;)", "y"},
      {R"(k = x; k = y;)", "y"},
      {"\"k\" = \"two\nlines\";", "two\nlines"},
      {"{ k = x; }", "x"},
      {"{ }", "no key"},
      {"", "no key"},
      {" \t\r\n", "no key"},
  });
}

TEST(StringTable, CommentsOfBothKindsStandBetweenWords) {
  expectTexts({
      {"// first\nk = x; // last", "x"},
      {"/* a */ k /* b */ = /* c */ x /* d */ ; /* e */", "x"},
      {"/* \"k\" = \"no\"; */ k = x;", "x"},
      {"/**/k = x;/***/", "x"},
      {"// a\rk = x;", "x"},
      {R"(k = "no // comment /* here */";)", "no // comment /* here */"},
      {"/* only */", "no key"},
  });
}

TEST(StringTable, EscapesStandForCharacters) {
  expectTexts({
      {R"(k = "a\nb\tc\rd\"e\\f\'g";)", "a\nb\tc\rd\"e\\f'g"},
      {R"(k = "\a\b\f\v";)", "\a\b\f\v"},
      {R"(k = "\U00e9\U00C9";)", "\u00E9\u00C9"},
      {R"(k = "\U266bx";)", "\u266Bx"},
      {R"(k = "\Ud83c\Udfb5!";)", "\U0001F3B5!"},
      {R"(k = "\Ud83c!";)", "\uFFFD!"},
      {R"(k = "\Udfb5\Ud83c";)", "\uFFFD\uFFFD"},
      {R"(k = "\U41 \U4g";)", "A \u0004g"},
      {R"(k = "\Ux";)", "Ux"},
      {R"(k = "\101\0411\7";)", "A!1\a"},
      {R"(k = "\351";)", "\u00E9"},
      {R"(k = "\q\"";)", "q\""},
      {"k = \"a\\\nb\";", "a\nb"},
      {"k = \"\\\u00E9\";", "\u00E9"},
      {R"("\U006B" = x;)", "x"},
  });
}

TEST(StringTable, TheLastSemicolonMayBeMissing) {
  expectTexts({
      {R"("k" = "x")", "x"},
      {"k = x // end", "x"},
      {"{ k = x }", "x"},
      {"j = y; k", "k"},
  });
}

TEST(StringTable, WhatIsNoTableIsDamaged) {
  expectTexts({
      {R"("k" = "x" "j" = "y";)", "damaged"},
      {R"("k" = "x)", "damaged"},
      {R"("k" = "x\)", "damaged"},
      {R"("k)", "damaged"},
      {R"(k = ;)", "damaged"},
      {R"(= x;)", "damaged"},
      {R"(k == x;)", "damaged"},
      {R"(; k = x;)", "damaged"},
      {R"(k = x;;)", "damaged"},
      {R"(k = x; /* open)", "damaged"},
      {R"({ k = x;)", "damaged"},
      {R"(k = x; })", "damaged"},
      {R"({ k = x; } j = y;)", "damaged"},
      {R"(k = { j = y; };)", "damaged"},
      {R"(k = (x, y);)", "damaged"},
      {"k = x\xFF;", "damaged"},
      {std::string("k = x\0;", 7), "damaged"},
  });
}

std::string utf16(std::u16string_view text, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : text) {
    const char upper = static_cast<char>(unit >> 8);
    const char lower = static_cast<char>(unit & 0xFF);
    bytes += bigEndian ? upper : lower;
    bytes += bigEndian ? lower : upper;
  }
  return bytes;
}

TEST(StringTable, ByteOrderMarksTellTheEncoding) {
  const std::u16string text = u"\uFEFF\"k\" = \"\u00E9\u97F3\U0001F3B5\";";
  const std::string expected = "\u00E9\u97F3\U0001F3B5";
  EXPECT_EQ(textOfK(utf16(text, true)), expected);
  EXPECT_EQ(textOfK(utf16(text, false)), expected);
  EXPECT_EQ(textOfK("\uFEFF\"k\" = \"\u00E9\u97F3\U0001F3B5\";"), expected);
  EXPECT_EQ(textOfK("\"k\" = \"\u00E9\u97F3\U0001F3B5\";"), expected);
  EXPECT_EQ(textOfK("\uFEFF"), "no key");
}

const std::string xmlHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist>\n";

TEST(StringTable, APropertyListInXMLIsATableToo) {
  const std::string list =
      "<plist version=\"1.0\"><dict><key>n</key><integer>1</integer>"
      "<key>k</key><string>caf\u00E9 &amp; more</string></dict></plist>";
  EXPECT_EQ(textOfK(xmlHead + list), "caf\u00E9 & more");
  EXPECT_EQ(textOfK(list), "caf\u00E9 & more");
  EXPECT_EQ(textOfK(xmlHead + "<plist version=\"1.0\"><dict/></plist>"), "no key");
  EXPECT_EQ(textOfK(xmlHead + "<plist version=\"1.0\"><array/></plist>"), "damaged");
  EXPECT_EQ(textOfK(xmlHead + "<plist version=\"1.0\"><dict><key>k</key>"), "damaged");
  EXPECT_EQ(textOfK(xmlHead), "damaged");
}

TEST(StringTable, ContainersWithinContainersAreRefusedUnread) {
  std::string deep = xmlHead + "<plist version=\"1.0\">";
  for (int i = 0; i < 20'000; ++i) deep += "<dict><key>k</key>";
  EXPECT_EQ(textOfK(deep), "damaged");
}

/// The binary form of a dictionary, as the property list library writes it.
std::string binaryList(std::initializer_list<Case> entries) {
  plist_t list = plist_new_dict();
  for (const auto& [key, text] : entries)
    plist_dict_set_item(list, key.c_str(), plist_new_string(text.c_str()));
  plist_dict_set_item(list, "n", plist_new_uint(7));
  char* bytes = nullptr;
  uint32_t length = 0;
  plist_to_bin(list, &bytes, &length);
  std::string copy(bytes, length);
  std::free(bytes);
  plist_free(list);
  return copy;
}

TEST(StringTable, ABinaryPropertyListIsATableToo) {
  const std::string longText(70'000, 'x');
  EXPECT_EQ(textOfK(binaryList({{"k", "Import"}})), "Import");
  EXPECT_EQ(textOfK(binaryList({{"k", "caf\u00E9 \U0001F3B5"}})), "caf\u00E9 \U0001F3B5");
  EXPECT_EQ(textOfK(binaryList({{"k", ""}})), "");
  EXPECT_EQ(textOfK(binaryList({{"k", "fifteen letters"}})), "fifteen letters");
  EXPECT_EQ(textOfK(binaryList({{"a key that needs a longer count", "x"}, {"k", longText}})), longText);
  EXPECT_EQ(StringTable::parse(binaryList({{"a", "1"}, {"b", "2"}}))->size(), 2u);
}

TEST(StringTable, DamagedBinaryListsHarmNobody) {
  const auto whole = binaryList({{"k", "Import"}, {"another key of some length", "caf\u00E9"}});
  for (size_t length = 0; length < whole.size(); ++length)
    EXPECT_EQ(textOfK(whole.substr(0, length)), length < 6 ? textOfK(whole.substr(0, length)) : "damaged");
  std::mt19937 random(std::random_device{}());
  for (int i = 0; i < 20'000; ++i) {
    auto mutated = whole;
    mutated[random() % mutated.size()] = static_cast<char>(random());
    mutated[random() % mutated.size()] = static_cast<char>(random());
    StringTable::parse(mutated);
  }
}

/// A dictionary with `entries` keys that all mean one long text.
std::string listWithOneTextForManyKeys(unsigned entries, unsigned textLength) {
  const auto number = [](uint64_t value, int bytes) {
    std::string text;
    for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8) text += static_cast<char>(value >> shift);
    return text;
  };
  std::string list = "bplist00";
  const size_t dictionary = list.size();
  list += "\xDF\x12" + number(entries, 4);
  for (unsigned i = 0; i < 2 * entries; ++i) list += number(1, 2);
  const size_t text = list.size();
  list += "\x5F\x12" + number(textLength, 4) + std::string(textLength, 'x');
  const size_t table = list.size();
  list += number(dictionary, 4) + number(text, 4);
  list += std::string(6, '\0') + "\x04\x02" + number(2, 8) + number(0, 8) + number(table, 8);
  return list;
}

TEST(StringTable, ASmallListDoesNotGrowToGigabytes) {
  EXPECT_TRUE(StringTable::parse(listWithOneTextForManyKeys(10, 1000)).has_value());
  EXPECT_FALSE(StringTable::parse(listWithOneTextForManyKeys(50'000, 500'000)).has_value());
}

TEST(StringTable, ALargerFileThanAnyTableIsRefused) {
  std::string table = "k = x; /*";
  table.resize(StringTable::largestFile - 2, ' ');
  table += "*/";
  EXPECT_EQ(textOfK(table), "x");
  EXPECT_EQ(textOfK(table + " "), "damaged");
}

TEST(StringTable, CutAndMutatedTablesHarmNobody) {
  const std::string table = "/* c */ \"k\" = \"\\Ud83c\\Udfb5\\351\\n\"; // c\n'j' = b; {}";
  std::mt19937 random(std::random_device{}());
  for (int i = 0; i < 20'000; ++i) {
    auto mutated = table.substr(0, random() % (table.size() + 1));
    if (!mutated.empty()) mutated[random() % mutated.size()] = static_cast<char>(random());
    StringTable::parse(mutated);
  }
}

}  // namespace
}  // namespace quaverly
