#include "Platform/Foundation/StringTables/UTF16.h"

#include <unicode/unistr.h>

namespace quaverly {

std::string utf8FromUTF16(std::string_view bytes, ByteOrder order) {
  const size_t high = order == ByteOrder::bigEndian ? 0 : 1;
  icu::UnicodeString text;
  for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const auto upper = static_cast<unsigned char>(bytes[at + high]);
    const auto lower = static_cast<unsigned char>(bytes[at + 1 - high]);
    text.append(static_cast<char16_t>(upper << 8 | lower));
  }
  std::string converted;
  return text.toUTF8String(converted);
}

}  // namespace quaverly
