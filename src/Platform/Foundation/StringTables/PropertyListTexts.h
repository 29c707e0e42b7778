#pragma once

#include <optional>
#include <string_view>

#include "Platform/Foundation/StringTables/StringTableParser.h"

namespace quaverly {

/// The texts in a property list whose top is a dictionary; entries that are no texts are left out. Nothing
/// for a damaged list, for another top, and for one with more containers than any string table has.
std::optional<Texts> textsInXMLPropertyList(std::string_view xml);
std::optional<Texts> textsInBinaryPropertyList(std::string_view bytes);

}  // namespace quaverly
