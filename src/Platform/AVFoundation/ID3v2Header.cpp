#include "Platform/AVFoundation/ID3v2Header.h"

#include <algorithm>

namespace quaverly::tags {
namespace {

std::optional<ID3v2Header> parseBehind(std::string_view mark, Bytes bytes) {
  if (bytes.size() < ID3v2Header::length || !asText(bytes).starts_with(mark)) return std::nullopt;
  const uint8_t version = bytes[3];
  const uint8_t flags = bytes[5];
  const auto size = syncsafe(bytes.subspan(6, 4));
  if (version < 2 || version == 0xff || bytes[4] == 0xff || !size) return std::nullopt;
  return ID3v2Header{.version = version,
                     .unsynchronised = (flags & 0x80) != 0,
                     .extended = version > 2 && (flags & 0x40) != 0,
                     .compressed = version == 2 && (flags & 0x40) != 0,
                     .footer = version > 3 && (flags & 0x10) != 0,
                     .bodyLength = *size};
}

}  // namespace

std::optional<ID3v2Header> ID3v2Header::parse(Bytes bytes) {
  return parseBehind("ID3", bytes);
}

std::optional<ID3v2Header> ID3v2Header::parseFooter(Bytes bytes) {
  return parseBehind("3DI", bytes);
}

std::optional<uint32_t> syncsafe(Bytes bytes) {
  if (std::ranges::any_of(bytes, [](uint8_t byte) { return byte >= 0x80; })) return std::nullopt;
  uint32_t value = 0;
  for (const uint8_t byte : bytes) value = value << 7 | byte;
  return value;
}

}  // namespace quaverly::tags
