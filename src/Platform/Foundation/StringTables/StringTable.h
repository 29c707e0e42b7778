#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/Foundation/StringTables/StringTableParser.h"

namespace quaverly {

/// The texts of a string table by key.
///
/// A table comes in one of three forms, told apart by content: pairs of "key" = "text"; as people write them,
/// in UTF-8 or (with a byte order mark) UTF-16; or a property list in XML or binary.
class StringTable {
 public:
  /// Files that are larger are none of ours.
  static constexpr size_t largestFile = 1 << 20;

  /// Nothing for a damaged table and for one larger than `largestFile`. An empty file is an empty table.
  static std::optional<StringTable> parse(std::string_view bytes);

  /// The text of a key, which may be empty; null when the key is not there.
  const std::string* find(std::string_view key) const;
  size_t size() const { return _texts.size(); }

 private:
  explicit StringTable(Texts texts) : _texts(std::move(texts)) {}

  Texts _texts;
};

}  // namespace quaverly
