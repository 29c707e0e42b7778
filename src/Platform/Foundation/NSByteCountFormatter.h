#pragma once

#include <cstdint>
#include <string>

namespace quaverly {

enum class NSByteCountFormatterCountStyle {
  File = 1,  ///< decimal units, as files are counted
};

/// Writes numbers of bytes for people, with the device locale's digits and decimal sign. Any thread.
class NSByteCountFormatter {
 public:
  /// "Zero KB", "1 byte", "999 bytes", "12 KB", "1.5 MB", "1.25 GB": kilobytes in full, megabytes with up to
  /// one decimal, greater units with up to two. Rounded half to even; what rounds to a thousand is one of the
  /// next unit.
  static std::string stringFromByteCountCountStyle(uint64_t byteCount, NSByteCountFormatterCountStyle style);
};

}  // namespace quaverly
