#include "Platform/Foundation/NSURL.h"

#include <algorithm>

#include "Platform/Foundation/NSString.h"
#include "Platform/Foundation/PercentEncoding.h"

namespace quaverly {
namespace {

/// A URL's parts as they are written (RFC 3986, appendix B).
struct Parts {
  std::optional<std::string_view> scheme;
  std::optional<std::string_view> authority;
  std::string_view path;
  std::optional<std::string_view> query;
};

bool isSchemeCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '+' || c == '-' ||
         c == '.';
}

bool isScheme(std::string_view text) {
  const bool startsWithLetter = !text.empty() && (text[0] | 0x20) >= 'a' && (text[0] | 0x20) <= 'z';
  return startsWithLetter && std::ranges::all_of(text, isSchemeCharacter);
}

/// Cuts `text` at the first of `marks` and returns what stood before it.
std::string_view takeUntil(std::string_view& text, std::string_view marks) {
  const auto taken = text.substr(0, text.find_first_of(marks));
  text.remove_prefix(taken.size());
  return taken;
}

Parts partsOf(std::string_view text) {
  Parts parts;
  text = text.substr(0, text.find('#'));
  if (const size_t colon = text.find(':');
      colon != std::string_view::npos && isScheme(text.substr(0, colon))) {
    parts.scheme = text.substr(0, colon);
    text.remove_prefix(colon + 1);
  }
  if (text.starts_with("//")) {
    text.remove_prefix(2);
    parts.authority = takeUntil(text, "/?");
  }
  parts.path = takeUntil(text, "?");
  if (!text.empty()) parts.query = text.substr(1);
  return parts;
}

bool isControlOrSpace(char c) {
  return (static_cast<unsigned char>(c) <= ' ') || c == 0x7F;
}

/// An authority without user, password and port, and without the brackets of an IPv6 address.
std::string_view hostIn(std::string_view authority) {
  authority.remove_prefix(authority.rfind('@') + 1);
  if (authority.starts_with('[')) return authority.substr(1, authority.find(']') - 1);
  return authority.substr(0, authority.find(':'));
}

}  // namespace

std::optional<NSURL> NSURL::URLWithString(std::string_view text) {
  if (text.empty() || std::ranges::any_of(text, isControlOrSpace)) return std::nullopt;
  return NSURL(std::string(text));
}

NSURL NSURL::fileURLWithPath(std::string_view path) {
  return NSURL("file://" + percentEncoded(path, "!$&'()*+,-./:=@_~"));
}

std::optional<std::string> NSURL::scheme() const {
  const auto scheme = partsOf(_text).scheme;
  if (!scheme) return std::nullopt;
  std::string lowerCase(*scheme);
  for (char& c : lowerCase)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
  return lowerCase;
}

std::optional<std::string> NSURL::host() const {
  const auto authority = partsOf(_text).authority;
  if (!authority) return std::nullopt;
  return std::string(hostIn(*authority));
}

std::optional<std::string> NSURL::path() const {
  return NSStringByRemovingPercentEncoding(partsOf(_text).path);
}

std::optional<std::string> NSURL::query() const {
  const auto query = partsOf(_text).query;
  if (!query) return std::nullopt;
  return std::string(*query);
}

}  // namespace quaverly
