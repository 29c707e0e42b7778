#pragma once

#include <optional>
#include <string_view>

#include "Platform/Foundation/NSPlainValue.h"

namespace quaverly {

/// The value in a property list. Data, dates and identifiers, which nobody here reads, are null values.
/// Nothing for a damaged list, and for one with more in it than any list of a bundle has: containers within
/// containers, or texts that are meant again and again.
std::optional<NSPlainValue> valueInXMLPropertyList(std::string_view xml);
std::optional<NSPlainValue> valueInBinaryPropertyList(std::string_view bytes);

}  // namespace quaverly
