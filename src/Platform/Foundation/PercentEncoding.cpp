#include "Platform/Foundation/PercentEncoding.h"

#include <charconv>
#include <optional>

#include "Platform/Foundation/NSString.h"

namespace quaverly {
namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

bool isLetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// The byte that two hexadecimal digits mean.
std::optional<char> byteFromHex(std::string_view digits) {
  unsigned value = 0;
  const char* end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, value, 16);
  if (digits.size() != 2 || result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return static_cast<char>(value);
}

}  // namespace

std::string percentEncoded(std::string_view text, std::string_view allowed) {
  std::string encoded;
  encoded.reserve(text.size());
  for (const char c : text) {
    if (isLetterOrDigit(c) || allowed.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      encoded.append({'%', hexDigits[byte >> 4], hexDigits[byte & 15]});
    }
  }
  return encoded;
}

std::string NSStringByAddingPercentEscapesForQuery(std::string_view text) {
  return percentEncoded(text, "!$&'()*+,-./:;=?@_~");
}

std::optional<std::string> NSStringByRemovingPercentEncoding(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      decoded += text[at];
      continue;
    }
    const auto byte = byteFromHex(text.substr(at + 1, 2));
    if (!byte) return std::nullopt;
    decoded += *byte;
    at += 2;
  }
  if (!NSStringIsUTF8(decoded)) return std::nullopt;
  return decoded;
}

}  // namespace quaverly
