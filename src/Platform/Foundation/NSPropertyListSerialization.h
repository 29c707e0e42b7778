#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "Platform/Foundation/NSPlainValue.h"

namespace quaverly {

/// Property lists, in XML and in binary. Data, dates and identifiers in them, which nobody here reads, are
/// null values. Any thread.
class NSPropertyListSerialization {
 public:
  NSPropertyListSerialization() = delete;

  /// Lists that are larger are none of ours.
  static constexpr size_t largestFile = 1 << 20;

  /// The value at the list's top. Nothing for a damaged list, a larger one, and one with more containers or
  /// repeated texts in it than any list of a bundle has.
  static std::optional<NSPlainValue> propertyListWithData(std::string_view bytes);

  /// The same for the file at a device path, which must be a regular one; the log says why there is nothing.
  static std::optional<NSPlainValue> propertyListWithContentsOfFile(std::string_view path);
};

}  // namespace quaverly
