#pragma once

#include <string>
#include <string_view>

namespace quaverly::host {

/// The declarations of a style attribute ("color:red;") that only change how text looks. Whatever fetches,
/// hides, moves or computes something is left out.
std::string cleanedDeclarations(std::string_view declarations);

/// The same for a style element: rules for plain selectors, with such declarations, and no others.
std::string cleanedStyleSheet(std::string_view sheet);

}  // namespace quaverly::host
