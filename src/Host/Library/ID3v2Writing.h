#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Host/Library/TagValues.h"
#include "Platform/AVFoundation/ID3v2Frames.h"

namespace quaverly::library {

/// The id that a tag version has for a field's text.
std::string_view frameID(uint8_t version, Field field);

/// The field whose order a sort frame tells, and that it goes with; null for other frames. A year's day and
/// time go with the year.
Field fieldFollowedBy(std::string_view id);

/// Appends frames as a tag of the given version has them. False, and nothing appended, when the version has
/// no room for so long a frame.
[[nodiscard]] bool appendTextFrame(std::string& frames, uint8_t version, Field field, std::string_view text);
[[nodiscard]] bool appendFrontCover(std::string& frames, uint8_t version, std::string_view image);

/// Appends a frame as it was found. Its size is written as the version asks, whichever way its tagger wrote
/// it, and a frame of a tag that was stuffed as a whole says so itself, if it is.
void appendRawFrame(std::string& frames, const tags::ID3v2Frame& frame);

/// A tag of the frames, filled up with zeros to a multiple of `tagAlignment`; empty when there are none.
/// Nothing when that is longer than a tag can be.
inline constexpr size_t tagAlignment = 4096;
std::optional<std::string> wholeTag(uint8_t version, const std::string& frames);

}  // namespace quaverly::library
