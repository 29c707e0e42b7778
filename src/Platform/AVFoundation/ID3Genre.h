#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quaverly::tags {

/// The name of a genre by its number in ID3v1's list; nothing for a number without one.
std::optional<std::string> genreNamed(int number);

/// The genre that a text frame means. A number, alone ("17") or in parentheses ("(17)"), stands for the name
/// in ID3v1's list, "(RX)" and "(CR)" for Remix and Cover; a name behind the parentheses refines it and is
/// what the tagger meant. Nothing for a number without a name.
std::optional<std::string> genreOf(std::string_view text);

}  // namespace quaverly::tags
