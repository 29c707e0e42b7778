#include "Platform/Foundation/StringTables/StringTableParser.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace quaverly {
namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";
constexpr std::string_view octalDigits = "01234567";
constexpr std::string_view hexDigits = "0123456789ABCDEFabcdef";
constexpr std::string_view bareCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_$/:.-";
constexpr std::string_view escapeLetters = "abfnrtv";
constexpr std::string_view escapedCharacters = "\a\b\f\n\r\t\v";

/// A text in the making. UTF-16 units come one by one, and two of them may form a character.
class Unescaped {
 public:
  void append(std::string_view utf8) {
    if (utf8.empty()) return;
    flush();
    _text += utf8;
  }
  void appendUnit(char16_t unit) { _units.append(unit); }

  std::string take() {
    flush();
    return std::move(_text);
  }

 private:
  void flush() {
    if (_units.isEmpty()) return;
    _units.toUTF8String(_text);
    _units.remove();
  }

  std::string _text;
  icu::UnicodeString _units;
};

class Parser {
 public:
  explicit Parser(std::string_view text) : _rest(text) {}

  std::optional<Texts> parse() {
    Texts texts;
    const bool inBraces = takeToken('{');
    while (!_damaged && !atEndOfPairs()) readPair(texts);
    if (takeToken('}') != inBraces || skipToToken() || _damaged) return std::nullopt;
    return texts;
  }

 private:
  void readPair(Texts& texts) {
    std::string key = readString();
    std::string text = takeToken('=') ? readString() : key;
    if (!takeToken(';') && !atEndOfPairs()) _damaged = true;
    texts.insert_or_assign(std::move(key), std::move(text));
  }

  bool atEndOfPairs() { return !skipToToken() || _rest[0] == '}'; }

  /// Skips white space and comments; whether anything else is left.
  bool skipToToken() {
    while (true) {
      take(_rest.find_first_not_of(whiteSpace));
      if (_rest.starts_with("//")) {
        take(_rest.find_first_of("\n\r"));
      } else if (_rest.starts_with("/*")) {
        skipBlockComment();
      } else {
        return !_rest.empty();
      }
    }
  }

  void skipBlockComment() {
    const size_t end = _rest.find("*/", 2);
    if (end == std::string_view::npos) _damaged = true;
    take(end == std::string_view::npos ? end : end + 2);
  }

  bool takeToken(char token) {
    if (!skipToToken() || _rest[0] != token) return false;
    take(1);
    return true;
  }

  std::string readString() {
    if (skipToToken() && (_rest[0] == '"' || _rest[0] == '\'')) return readQuoted(take(1));
    const auto bare = take(_rest.find_first_not_of(bareCharacters));
    if (bare.empty()) _damaged = true;
    return std::string(bare);
  }

  std::string readQuoted(std::string_view quote) {
    Unescaped text;
    const std::string marks = std::string(quote) + '\\';
    while (true) {
      text.append(take(_rest.find_first_of(marks)));
      const auto mark = take(1);
      if (mark.empty()) _damaged = true;
      if (mark != "\\") return text.take();
      readEscape(text);
    }
  }

  /// Reads what follows a backslash.
  void readEscape(Unescaped& text) {
    if (const auto octal = takeUpTo(3, octalDigits); !octal.empty()) return text.appendUnit(number(octal, 8));
    const auto escaped = take(1);
    const size_t letter = escaped.empty() ? std::string_view::npos : escapeLetters.find(escaped[0]);
    if (letter != std::string_view::npos) return text.append(escapedCharacters.substr(letter, 1));
    const auto hex = escaped == "U" ? takeUpTo(4, hexDigits) : std::string_view();
    if (!hex.empty()) return text.appendUnit(number(hex, 16));
    text.append(escaped);
  }

  static char16_t number(std::string_view digits, int base) {
    uint16_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    return value;
  }

  std::string_view takeUpTo(size_t limit, std::string_view characters) {
    return take(std::min(limit, std::min(_rest.find_first_not_of(characters), _rest.size())));
  }

  /// Takes as many bytes as there are, at most `count`.
  std::string_view take(size_t count) {
    const auto taken = _rest.substr(0, count);
    _rest.remove_prefix(taken.size());
    return taken;
  }

  std::string_view _rest;
  bool _damaged = false;
};

}  // namespace

std::optional<Texts> textsInPairs(std::string_view text) {
  return Parser(text).parse();
}

}  // namespace quaverly
