#pragma once

#include <string_view>

#include "Platform/QuartzCore/CGGeometry.h"
#include "Platform/UIKit/UIFont.h"

namespace quaverly {

// How much room a text takes, as a label that is sized to fit it: in whole points, rounded up, after lines
// were added up; nothing at all for an empty text. The text is UTF-8. Measuring the same line again costs a
// look-up. Main thread only.

/// On one line; line breaks in the text count as spaces.
CGSize sizeOfText(std::string_view text, const UIFont& font);

/// On lines of at most `width` points: broken at spaces (which then take no room), within a word that is
/// wider than a line, and where the text breaks a line itself. A width that is not positive limits nothing.
/// Lines behind `maxLines` are left out; 0 leaves none out.
CGSize sizeOfTextInWidth(std::string_view text, const UIFont& font, double width, size_t maxLines = 0);

}  // namespace quaverly
