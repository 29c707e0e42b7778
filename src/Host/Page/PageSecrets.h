#pragma once

#include <string>
#include <string_view>

namespace quaverly::page {

/// 128 bits from the kernel's random source, as 32 hexadecimal digits. Throws std::system_error when there
/// are none.
std::string makeSecret();

/// Whether two secrets are the same, in a time that tells nothing but their lengths.
bool isSameSecret(std::string_view a, std::string_view b);

}  // namespace quaverly::page
