#include "Platform/Foundation/NSString.h"

#include <unicode/utf8.h>

#include <charconv>
#include <limits>

namespace quaverly {
namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";
constexpr std::string_view digits = "0123456789";
constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// Calls `take(codePoint, bytes)` for every character; a negative code point stands for bytes that are not
/// UTF-8.
template <class Take>
void forEachCharacter(std::string_view text, Take take) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  for (size_t at = 0; at < text.size();) {
    const size_t start = at;
    UChar32 character = 0;
    U8_NEXT(bytes, at, text.size(), character);
    take(character, text.substr(start, at - start));
  }
}

std::string_view withoutLeading(std::string_view text, std::string_view characters) {
  text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
  return text;
}

/// What follows white space and a plus sign, as the standard library's parsers want it.
std::string_view numberIn(std::string_view text) {
  text = withoutLeading(text, whiteSpace);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

bool isNegative(std::string_view number) {
  return number.starts_with('-');
}

}  // namespace

size_t NSStringLength(std::string_view text) {
  size_t units = 0;
  forEachCharacter(text, [&](UChar32 character, std::string_view bytes) {
    units += character < 0 ? bytes.size() : character > 0xFFFF ? 2 : 1;
  });
  return units;
}

std::string NSStringSubstringToIndex(std::string_view text, size_t length) {
  size_t units = 0;
  size_t end = 0;
  forEachCharacter(text, [&](UChar32 character, std::string_view bytes) {
    units += character < 0 ? bytes.size() : character > 0xFFFF ? 2 : 1;
    if (units <= length) end += bytes.size();
  });
  return std::string(text.substr(0, end));
}

int32_t NSStringIntValue(std::string_view text) {
  const auto number = numberIn(text);
  int32_t value = 0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  return isNegative(number) ? std::numeric_limits<int32_t>::min() : std::numeric_limits<int32_t>::max();
}

float NSStringFloatValue(std::string_view text) {
  const auto number = numberIn(text);
  const auto unsignedPart = number.substr(isNegative(number) ? 1 : 0);
  if (unsignedPart.find_first_of("0123456789.") != 0) return 0;  // a parser would take "inf" and "nan"
  float value = 0;
  const auto result =
      std::from_chars(number.data(), number.data() + number.size(), value, std::chars_format::fixed);
  if (result.ec != std::errc::result_out_of_range) return value;
  const bool tooSmall = withoutLeading(unsignedPart, "0").find_first_of(digits) != 0;
  if (tooSmall) return 0;
  return isNegative(number) ? -std::numeric_limits<float>::infinity()
                            : std::numeric_limits<float>::infinity();
}

bool NSStringIsUTF8(std::string_view bytes) {
  bool valid = true;
  forEachCharacter(bytes, [&](UChar32 character, std::string_view) { valid = valid && character >= 0; });
  return valid;
}

std::string NSStringWithReplacements(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  forEachCharacter(
      bytes, [&](UChar32 character, std::string_view part) { text += character < 0 ? replacement : part; });
  return text;
}

}  // namespace quaverly
