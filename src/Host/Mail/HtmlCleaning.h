#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quaverly::host {

/// What a mail's body may be at most.
inline constexpr size_t longestHtml = size_t{1} << 20;

/// What of a body may leave in a mail: text, its structure and its looks, in a form that has only one
/// reading. Scripts, forms, frames, pictures, comments, whatever would be fetched from elsewhere or hidden
/// from the reader, and links to anything but web and mail addresses are gone. Nothing for a body that is too
/// long or too deep. Any thread.
std::optional<std::string> cleanedHtml(std::string_view html);

}  // namespace quaverly::host
