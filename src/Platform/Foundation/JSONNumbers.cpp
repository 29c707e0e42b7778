#include "Platform/Foundation/JSONNumbers.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace quaverly {
namespace {

/// The end of the text in quotes that begins at `at`.
size_t endOfText(std::string_view json, size_t at) {
  for (++at; at < json.size() && json[at] != '"'; ++at) {
    if (json[at] == '\\') ++at;
  }
  return std::min(at + 1, json.size());
}

bool skip(std::string_view& number, std::string_view anyOf) {
  if (number.empty() || anyOf.find(number.front()) == std::string_view::npos) return false;
  number.remove_prefix(1);
  return true;
}

bool skipDigits(std::string_view& number) {
  const size_t count = std::min(number.find_first_not_of("0123456789"), number.size());
  number.remove_prefix(count);
  return count > 0;
}

/// As JSON writes numbers: "-0.5e+3", but neither "01" nor "1." nor ".5".
bool isNumber(std::string_view number) {
  skip(number, "-");
  if (!skip(number, "0") && !skipDigits(number)) return false;
  if (skip(number, ".") && !skipDigits(number)) return false;
  if (skip(number, "eE")) {
    skip(number, "+-");
    if (!skipDigits(number)) return false;
  }
  return number.empty();
}

bool fitsDouble(std::string_view number) {
  double value = 0;
  return std::from_chars(number.data(), number.data() + number.size(), value).ec == std::errc();
}

}  // namespace

JSONNumbers::JSONNumbers(std::string_view json) : text(json) {
  for (size_t at = 0; at < json.size();) {
    at = json.find_first_of("\"-0123456789", at);
    if (at == std::string_view::npos) return;
    if (json[at] == '"') {
      at = endOfText(json, at);
      continue;
    }
    const size_t end = std::min(json.find_first_not_of("+-.0123456789eE", at), json.size());
    const auto number = json.substr(at, end - at);
    digits.emplace_back(number);
    if (isNumber(number) && !fitsDouble(number))
      text.replace(at, 1, "0").replace(at + 1, end - at - 1, end - at - 1, ' ');
    at = end;
  }
}

}  // namespace quaverly
