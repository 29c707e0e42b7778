#include "Host/Mail/StyleCleaning.h"

#include <algorithm>
#include <array>

namespace quaverly::host {
namespace {

constexpr std::string_view white = " \t\r\n\f";

constexpr std::array<std::string_view, 44> properties = {"background-color",
                                                         "border",
                                                         "border-bottom",
                                                         "border-collapse",
                                                         "border-color",
                                                         "border-left",
                                                         "border-right",
                                                         "border-spacing",
                                                         "border-style",
                                                         "border-top",
                                                         "border-width",
                                                         "color",
                                                         "direction",
                                                         "font",
                                                         "font-family",
                                                         "font-size",
                                                         "font-style",
                                                         "font-variant",
                                                         "font-weight",
                                                         "letter-spacing",
                                                         "line-height",
                                                         "list-style",
                                                         "list-style-type",
                                                         "margin",
                                                         "margin-bottom",
                                                         "margin-left",
                                                         "margin-right",
                                                         "margin-top",
                                                         "padding",
                                                         "padding-bottom",
                                                         "padding-left",
                                                         "padding-right",
                                                         "padding-top",
                                                         "tab-size",
                                                         "text-align",
                                                         "text-decoration",
                                                         "text-decoration-line",
                                                         "text-indent",
                                                         "text-transform",
                                                         "vertical-align",
                                                         "white-space",
                                                         "widows",
                                                         "word-break",
                                                         "word-spacing"};

constexpr std::array<std::string_view, 4> functions = {"rgb", "rgba", "hsl", "hsla"};

std::string_view trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(white);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(white) - first + 1);
}

bool isLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lower;
}

bool consistsOf(std::string_view text, std::string_view others) {
  return std::ranges::all_of(
      text, [&](char c) { return isLetterOrDigit(c) || others.find(c) != std::string_view::npos; });
}

template <size_t Count>
bool contains(const std::array<std::string_view, Count>& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

/// Colours are the only functions.
bool callsOnlyColours(std::string_view value) {
  for (size_t at = value.find('('); at != std::string_view::npos; at = value.find('(', at + 1)) {
    size_t first = at;
    while (first > 0 && (isLetterOrDigit(value[first - 1]) || value[first - 1] == '-')) --first;
    if (!contains(functions, lowerCase(value.substr(first, at - first)))) return false;
  }
  return true;
}

/// No backslash, so that nothing is written in another way than it is read.
bool isPlainValue(std::string_view value) {
  const bool isQuoted = std::ranges::count(value, '"') % 2 == 0 && std::ranges::count(value, '\'') % 2 == 0;
  return !value.empty() && isQuoted && consistsOf(value, " #%.,()'\"-+!") && callsOnlyColours(value);
}

bool isPlain(std::string_view declaration) {
  const size_t colon = declaration.find(':');
  if (colon == std::string_view::npos) return false;
  return contains(properties, lowerCase(trimmed(declaration.substr(0, colon)))) &&
         isPlainValue(trimmed(declaration.substr(colon + 1)));
}

}  // namespace

std::string cleanedDeclarations(std::string_view declarations) {
  std::string clean;
  while (!declarations.empty()) {
    const size_t end = std::min(declarations.find(';'), declarations.size());
    const std::string_view declaration = trimmed(declarations.substr(0, end));
    if (isPlain(declaration)) clean.append(declaration).append(";");
    declarations.remove_prefix(std::min(end + 1, declarations.size()));
  }
  return clean;
}

std::string cleanedStyleSheet(std::string_view sheet) {
  std::string clean;
  for (;;) {
    const size_t open = sheet.find('{');
    const size_t close = sheet.find('}');
    if (open == std::string_view::npos || close == std::string_view::npos) return clean;
    if (open < close) {
      const std::string_view selector = trimmed(sheet.substr(0, open));
      const std::string rules = cleanedDeclarations(sheet.substr(open + 1, close - open - 1));
      if (!selector.empty() && consistsOf(selector, " ,.-") && !rules.empty())
        clean.append(selector).append("{").append(rules).append("}");
    }
    sheet.remove_prefix(close + 1);
  }
}

}  // namespace quaverly::host
