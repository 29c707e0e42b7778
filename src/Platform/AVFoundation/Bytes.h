#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace quaverly::tags {

using Bytes = std::span<const uint8_t>;

inline std::string_view asText(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

inline Bytes asBytes(std::string_view text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

/// The number in up to four bytes, the highest first.
constexpr uint32_t bigEndian(Bytes bytes) {
  uint32_t value = 0;
  for (const uint8_t byte : bytes) value = value << 8 | byte;
  return value;
}

/// The number in up to four bytes, the lowest first.
constexpr uint32_t littleEndian(Bytes bytes) {
  uint32_t value = 0;
  for (size_t i = bytes.size(); i > 0; --i) value = value << 8 | bytes[i - 1];
  return value;
}

/// At most `count` bytes from `offset` on; empty when `offset` lies behind the end.
constexpr Bytes part(Bytes bytes, size_t offset, size_t count = std::dynamic_extent) {
  if (offset >= bytes.size()) return {};
  bytes = bytes.subspan(offset);
  return bytes.first(count < bytes.size() ? count : bytes.size());
}

}  // namespace quaverly::tags
