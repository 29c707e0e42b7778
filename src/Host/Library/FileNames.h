#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quaverly::library {

/// The longest name that every common file system takes, in bytes.
inline constexpr size_t longestFileName = 255;

/// `text` as the name of a folder or file on every common file system: UTF-8 in Unicode's composed form,
/// without / \ : * ? " < > | and control characters ("_" stands in their place), without a dot or space at
/// its start or end, no reserved device name, and at most `limit` bytes, cut between characters as people see
/// them. Empty when nothing is left.
std::string safeFileName(std::string_view text, size_t limit = longestFileName);

/// A file's name from its stem and its ending ("mp3"); `limit` is for both, and only the stem is shortened.
std::string safeFileName(std::string_view stem, std::string_view extension, size_t limit);

/// Two names that are equal in this form are one name on some file systems: cases and compositions folded.
std::string foldedFileName(std::string_view name);

}  // namespace quaverly::library
