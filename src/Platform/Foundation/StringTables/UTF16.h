#pragma once

#include <string>
#include <string_view>

namespace quaverly {

enum class ByteOrder { littleEndian, bigEndian };

/// The UTF-8 of pairs of bytes; replacement characters for unpaired surrogates. An odd last byte is left out.
std::string utf8FromUTF16(std::string_view bytes, ByteOrder order);

}  // namespace quaverly
