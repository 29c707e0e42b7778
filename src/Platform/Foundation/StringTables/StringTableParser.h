#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quaverly {

using Texts = std::map<std::string, std::string, std::less<>>;

/// Reads a string table as people write it, in UTF-8:
///
///     /* What the button says. */
///     "IMPORT" = "Import";   // keys and texts of letters, digits and _$/:.- need no quotes
///
/// Texts know the escapes \n \t \r \a \b \f \v, \Uxxxx (UTF-16 units, pairs included) and up to three octal
/// digits for a character below 256; any other escaped character stands for itself. A key alone is its own
/// text, the later of two equal keys wins, braces around the whole are allowed, and the last semicolon may be
/// missing. Anything else makes the table a damaged one: nothing.
std::optional<Texts> textsInPairs(std::string_view text);

}  // namespace quaverly
