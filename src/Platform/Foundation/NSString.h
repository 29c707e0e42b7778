#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Text is UTF-8 in std::string. These are the platform's rules for it.
namespace quaverly {

/// The number of UTF-16 units, as the platform counts lengths. A byte that is not part of valid UTF-8 counts
/// as one.
size_t NSStringLength(std::string_view text);

/// The first `length` UTF-16 units; without the last one when that would cut a character in two.
std::string NSStringSubstringToIndex(std::string_view text, size_t length);

/// Leading white space, a sign, digits up to the first other character; no digits give 0; saturates at 32
/// bits.
int32_t NSStringIntValue(std::string_view text);

/// The longest decimal prefix ("8.4" of "8.4.1") behind white space and a sign, read straight to single
/// precision, whatever the locale; 0 when there is none. Exponents do not count; what is too large is
/// infinite.
float NSStringFloatValue(std::string_view text);

bool NSStringIsUTF8(std::string_view bytes);
/// `bytes` with a replacement character (U+FFFD) for whatever is not UTF-8.
std::string NSStringWithReplacements(std::string_view bytes);

// Paths. Bytes, never damaged.
/// The two with one "/" between them, whatever slashes they end and begin with; the other when one is empty.
std::string NSStringByAppendingPathComponent(std::string_view path, std::string_view component);
/// "/a/b" and "/a/b/" give "/a", "/a" and "/" give "/", "a" gives "".
std::string NSStringByDeletingLastPathComponent(std::string_view path);
/// "/a/b" and "/a/b/" give "b", "/" gives "/".
std::string NSStringLastPathComponent(std::string_view path);

/// Escapes every byte that the platform does not allow in a URL's query. Allowed are letters, digits and
/// !$&'()*+,-./:;=?@_~
std::string NSStringByAddingPercentEscapesForQuery(std::string_view text);
/// Replaces percent escapes; nothing when an escape is broken or the result is not UTF-8. "+" stays "+".
std::optional<std::string> NSStringByRemovingPercentEncoding(std::string_view text);

}  // namespace quaverly
