#pragma once

#include <string>
#include <string_view>

namespace quaverly {

/// `text` with "%XX" for every byte but ASCII letters, digits and the characters in `allowed`.
std::string percentEncoded(std::string_view text, std::string_view allowed);

}  // namespace quaverly
