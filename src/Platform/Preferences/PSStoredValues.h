#pragma once

#include <string>
#include <string_view>

#include "Platform/Foundation/NSPlainValue.h"

namespace quaverly {

/// The values that people gave to the rows of property lists: those with the same `defaults` in one file,
/// "DEFAULTS.json" in the folder. Main thread only.
class PSStoredValues {
 public:
  PSStoredValues() = delete;

  /// Where the host keeps the files. Without it nothing is kept.
  static constexpr const char* folder = "/var/mobile/Library/Preferences";

  /// Null for a value that nobody gave, and when the file cannot be read.
  static NSPlainValue valueForKey(std::string_view key, std::string_view defaults);
  /// Writes at once, in one step, and keeps all else in the file. A damaged file is replaced. The log says
  /// why nothing could be written.
  static void setValueForKey(NSPlainValue value, std::string_view key, std::string_view defaults);
};

}  // namespace quaverly
