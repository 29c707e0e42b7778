#include "Platform/AVFoundation/ID3Text.h"

#include <algorithm>

#include "Platform/Foundation/NSString.h"

namespace quaverly::tags {
namespace {

constexpr char32_t replacement = 0xfffd;

void appendUTF8(std::string& text, char32_t c) {
  const auto put = [&](char32_t byte) { text += static_cast<char>(byte); };
  if (c < 0x80) return put(c);
  if (c < 0x800) {
    put(0xc0 | c >> 6);
  } else if (c < 0x10000) {
    put(0xe0 | c >> 12);
    put(0x80 | (c >> 6 & 0x3f));
  } else {
    put(0xf0 | c >> 18);
    put(0x80 | (c >> 12 & 0x3f));
    put(0x80 | (c >> 6 & 0x3f));
  }
  put(0x80 | (c & 0x3f));
}

/// Takes the next character off valid UTF-8.
char32_t takeCharacter(std::string_view& text) {
  const auto lead = static_cast<uint8_t>(text[0]);
  const size_t length = lead < 0x80 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
  char32_t c = length == 1 ? lead : lead & (0x7fu >> length);
  for (size_t i = 1; i < std::min(length, text.size()); ++i)
    c = c << 6 | (static_cast<uint8_t>(text[i]) & 0x3f);
  text.remove_prefix(std::min(length, text.size()));
  return c;
}

/// UTF-16 units in either byte order.
class Units {
 public:
  Units(Bytes bytes, bool bigEndian) : _bytes(bytes), _high(bigEndian ? 0 : 1) {}

  size_t count() const { return _bytes.size() / 2; }
  char16_t operator[](size_t i) const {
    return static_cast<char16_t>(_bytes[2 * i + _high] << 8 | _bytes[2 * i + 1 - _high]);
  }

 private:
  Bytes _bytes;
  size_t _high;
};

bool isHigh(char16_t unit) {
  return (unit & 0xfc00) == 0xd800;
}

bool isLow(char16_t unit) {
  return (unit & 0xfc00) == 0xdc00;
}

std::string textOfUnits(const Units& units) {
  std::string text;
  for (size_t i = 0; i < units.count(); ++i) {
    const char16_t unit = units[i];
    if (isHigh(unit) && i + 1 < units.count() && isLow(units[i + 1])) {
      appendUTF8(text, 0x10000 + ((unit & 0x3ffu) << 10 | (units[++i] & 0x3ffu)));
    } else {
      appendUTF8(text, isHigh(unit) || isLow(unit) ? replacement : unit);
    }
  }
  return text;
}

/// Without a mark the half of the bytes that has more zeros is the upper one, since most characters of most
/// titles are below 256; little-endian where that does not tell.
bool looksBigEndian(Bytes bytes) {
  size_t first = 0;
  size_t second = 0;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    first += bytes[i] == 0;
    second += bytes[i + 1] == 0;
  }
  return first > second;
}

std::string decodeUTF16(Bytes bytes, bool markExpected) {
  bool isBigEndian = !markExpected || looksBigEndian(bytes);
  while (bytes.size() >= 2) {
    const uint32_t mark = bigEndian(bytes.first(2));
    if (mark != 0xfeff && mark != 0xfffe) break;
    isBigEndian = mark == 0xfeff;
    bytes = bytes.subspan(2);
  }
  return textOfUnits(Units(bytes, isBigEndian));
}

std::string decodeLatin1(Bytes bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const uint8_t byte : bytes) appendUTF8(text, byte);
  return text;
}

std::string decodeUTF8(std::string_view text) {
  while (text.starts_with("\xef\xbb\xbf")) text.remove_prefix(3);
  return NSStringWithReplacements(text);
}

bool isWide(ID3Encoding encoding) {
  return encoding == ID3Encoding::utf16 || encoding == ID3Encoding::utf16BigEndian;
}

/// The length of the text in front of the first terminator.
size_t lengthOfText(ID3Encoding encoding, Bytes bytes) {
  if (!isWide(encoding)) return static_cast<size_t>(std::ranges::find(bytes, 0) - bytes.begin());
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    if (bytes[i] == 0 && bytes[i + 1] == 0) return i;
  }
  return bytes.size();
}

std::string encodeUTF16(std::string_view text) {
  std::string bytes = "\xff\xfe";
  const auto put = [&](char32_t unit) {
    bytes += static_cast<char>(unit & 0xff);
    bytes += static_cast<char>(unit >> 8);
  };
  while (!text.empty()) {
    const char32_t c = takeCharacter(text);
    if (c >= 0x10000) {
      put(0xd800 | (c - 0x10000) >> 10);
      put(0xdc00 | (c & 0x3ff));
    } else {
      put(c);
    }
  }
  return bytes;
}

bool fitsLatin1(std::string_view text) {
  while (!text.empty()) {
    if (takeCharacter(text) > 0xff) return false;
  }
  return true;
}

std::string numbered(ID3Encoding encoding, std::string text) {
  return text.insert(0, 1, static_cast<char>(encoding));
}

}  // namespace

std::string decodeID3Text(ID3Encoding encoding, Bytes bytes) {
  bytes = bytes.first(lengthOfText(encoding, bytes));
  switch (encoding) {
    case ID3Encoding::latin1:
      return decodeLatin1(bytes);
    case ID3Encoding::utf16:
      return decodeUTF16(bytes, true);
    case ID3Encoding::utf16BigEndian:
      return decodeUTF16(bytes, false);
    case ID3Encoding::utf8:
      return decodeUTF8(asText(bytes));
  }
  return {};
}

size_t terminatedLength(ID3Encoding encoding, Bytes bytes) {
  return std::min(bytes.size(), lengthOfText(encoding, bytes) + (isWide(encoding) ? 2 : 1));
}

std::string textOfFrame(Bytes content) {
  if (content.empty() || content[0] > static_cast<uint8_t>(ID3Encoding::utf8)) return {};
  if (content.size() > longestText) return {};
  const auto encoding = static_cast<ID3Encoding>(content[0]);
  for (Bytes rest = content.subspan(1); !rest.empty();
       rest = rest.subspan(terminatedLength(encoding, rest))) {
    std::string text = decodeID3Text(encoding, rest);
    if (!text.empty()) return text;
  }
  return {};
}

std::string encodeID3Text(uint8_t version, std::string_view text) {
  const std::string valid = NSStringWithReplacements(text);
  if (version >= 4) return numbered(ID3Encoding::utf8, valid);
  if (fitsLatin1(valid)) return numbered(ID3Encoding::latin1, toLatin1(valid));
  return numbered(ID3Encoding::utf16, encodeUTF16(valid));
}

std::string toLatin1(std::string_view text) {
  const std::string valid = NSStringWithReplacements(text);
  std::string bytes;
  for (std::string_view rest = valid; !rest.empty();) {
    const char32_t c = takeCharacter(rest);
    bytes += c > 0xff ? '?' : static_cast<char>(c);
  }
  return bytes;
}

}  // namespace quaverly::tags
