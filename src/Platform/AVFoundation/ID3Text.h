#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/AVFoundation/Bytes.h"

namespace quaverly::tags {

/// How a frame writes text, by the number that the frame gives.
enum class ID3Encoding : uint8_t { latin1, utf16, utf16BigEndian, utf8 };

/// A longer text is none that a screen could show, and is not read.
inline constexpr size_t longestText = size_t{32} << 10;

/// Text as UTF-8, up to its terminator or the end. Byte order marks may be missing, doubled or where none
/// belongs; what is damaged becomes replacement characters.
std::string decodeID3Text(ID3Encoding encoding, Bytes bytes);

/// How many bytes a terminated text takes, its terminator included; all of them when there is no terminator.
size_t terminatedLength(ID3Encoding encoding, Bytes bytes);

/// The text of a text frame's content, which begins with the number of an encoding. Of several values,
/// separated by zeros, the first that is not empty: a field of a form has room for one, and players that show
/// one show the first. Empty for an unknown encoding and for a text that is too long.
std::string textOfFrame(Bytes content);

/// UTF-8 as a frame of the tag version writes it, the encoding's number first: Latin-1 where that suffices,
/// else UTF-16 with its mark; in 2.4 UTF-8.
std::string encodeID3Text(uint8_t version, std::string_view text);

/// UTF-8 as Latin-1, a question mark for every character that it lacks.
std::string toLatin1(std::string_view text);

}  // namespace quaverly::tags
