#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/NSPlainValue.h"

namespace quaverly {

/// JSON text and its values. The order of keys, and keys that come twice, stay as they are; numbers keep
/// their digits, however large they are. Any thread.
class NSJSONSerialization {
 public:
  NSJSONSerialization() = delete;

  /// Texts that are longer or nested deeper are refused before anything is made of them.
  static constexpr size_t largestText = 1 << 20;
  static constexpr size_t deepestNesting = 512;

  /// Nothing for what is no JSON text in UTF-8, and beyond the limits. Any value may be at the top.
  static std::optional<NSPlainValue> JSONObjectWithText(std::string_view text);

  /// Readable text in UTF-8, indented by two spaces, with a line break at its end. What is not UTF-8 in a
  /// text becomes U+FFFD.
  static std::string prettyPrintedTextWithJSONObject(const NSPlainValue& value);
};

}  // namespace quaverly
