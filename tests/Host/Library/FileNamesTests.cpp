#include "Host/Library/FileNames.h"

#include <gtest/gtest.h>

#include "Platform/Foundation/NSString.h"

namespace quaverly::library {
namespace {

struct Case {
  std::string text;
  std::string name;
};

std::string repeated(std::string_view text, size_t times) {
  std::string result;
  for (size_t i = 0; i < times; ++i) result += text;
  return result;
}

TEST(SafeFileName, HoldsWhatEveryFileSystemTakes) {
  const Case cases[] = {
      {"Plain Title", "Plain Title"},
      {"AC/DC", "AC_DC"},
      {"back\\slash", "back_slash"},
      {"a:b*c?d\"e<f>g|h", "a_b_c_d_e_f_g_h"},
      {"tab\there\nline\x7f", "tab_here_line_"},
      {std::string("nul\0inside", 10), "nul_inside"},
      {"next\u0085line\u2028sep\u2029para", "next_line_sep_para"},
      {"../../etc/passwd", "_._.._etc_passwd"},
      {".", "_"},
      {"..", "_"},
      {"...", "_"},
      {".hidden", "_hidden"},
      {" .hidden", "_hidden"},
      {"  spaced  ", "spaced"},
      {"\u00a0\u3000wide spaces\u3000", "wide spaces"},
      {"Vol. 1.", "Vol. 1"},
      {"dots... ...", "dots"},
      {"", ""},
      {"   ", ""},
      {"What's \u201cthis\u201d; a + b = c!", "What's \u201cthis\u201d; a + b = c!"},
      {"\u65e5\u672c\u8a9e", "\u65e5\u672c\u8a9e"},
      {"\U0001F468\u200D\U0001F469\u200D\U0001F467", "\U0001F468\u200D\U0001F469\u200D\U0001F467"},
      {"e\u0301", "\u00e9"},
      {"A\u030a", "\u00c5"},
      {"broken \xff\xfe utf", "broken \ufffd\ufffd utf"},
  };
  for (const auto& [text, name] : cases) EXPECT_EQ(safeFileName(text), name) << text;
}

TEST(SafeFileName, IsNoDeviceOfOtherSystems) {
  const Case cases[] = {
      {"CON", "_CON"},
      {"nul", "_nul"},
      {"Aux", "_Aux"},
      {"PRN.txt", "_PRN.txt"},
      {"com1", "_com1"},
      {"LPT9", "_LPT9"},
      {"COM\u00b2", "_COM\u00b2"},
      {"con .song", "_con .song"},
      {"CONIN$", "_CONIN$"},
      {"CONCERT", "CONCERT"},
      {"COM", "COM"},
      {"COM10", "COM10"},
      {"Nullarbor", "Nullarbor"},
      {"My CON", "My CON"},
  };
  for (const auto& [text, name] : cases) EXPECT_EQ(safeFileName(text), name) << text;
}

TEST(SafeFileName, IsCutBetweenCharactersAsPeopleSeeThem) {
  const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";  // one character of 18 bytes
  const Case cases[] = {
      {std::string(255, 'x'), std::string(255, 'x')},
      {std::string(256, 'x'), std::string(255, 'x')},
      {repeated("\u00e9", 200), repeated("\u00e9", 127)},
      {repeated("\u65e5", 90), repeated("\u65e5", 85)},
      {repeated("\U0001F3B5", 64), repeated("\U0001F3B5", 63)},
      {std::string(240, 'x') + family, std::string(240, 'x')},
      {std::string(253, 'x') + "q\u0323\u0301", std::string(253, 'x')},
      {std::string(254, 'x') + " tail", std::string(254, 'x')},
      {std::string(253, 'x') + "..tail", std::string(253, 'x')},
  };
  for (const auto& [text, name] : cases) {
    EXPECT_EQ(safeFileName(text), name);
    EXPECT_LE(safeFileName(text).size(), 255U);
  }
}

TEST(SafeFileName, KeepsItsEndingWhenItIsShortened) {
  EXPECT_EQ(safeFileName("Title", "mp3", 255), "Title.mp3");
  EXPECT_EQ(safeFileName(std::string(300, 'x'), "mp3", 255), std::string(251, 'x') + ".mp3");
  EXPECT_EQ(safeFileName("NUL", "mp3", 255), "_NUL.mp3");
  EXPECT_EQ(safeFileName("Sea of ...", "flac", 255), "Sea of.flac");
}

TEST(SafeFileName, StaysTheSameWhenItIsMadeSafeAgain) {
  for (const auto* text : {"AC/DC", "CON", "..", "e\u0301 .", "\xff", " x ", "Vol. 1."}) {
    const auto once = safeFileName(text);
    EXPECT_EQ(safeFileName(once), once);
    EXPECT_TRUE(NSStringIsUTF8(once));
  }
}

TEST(FoldedFileName, IsOneForNamesThatSomeFileSystemHoldsToBeOne) {
  const Case same[] = {
      {"Title.mp3", "TITLE.MP3"},
      {"\u00c9tude", "e\u0301tude"},
      {"stra\u00dfe", "STRASSE"},
      {"\u03a3\u03af\u03c3\u03c5\u03c6\u03bf\u03c2", "\u03a3\u038a\u03a3\u03a5\u03a6\u039f\u03a3"},
  };
  for (const auto& [one, other] : same) EXPECT_EQ(foldedFileName(one), foldedFileName(other)) << one;
  EXPECT_NE(foldedFileName("Title 1"), foldedFileName("Title 2"));
  EXPECT_NE(foldedFileName("caf\u00e9"), foldedFileName("cafe"));
}

}  // namespace
}  // namespace quaverly::library
