#pragma once

#include <cstddef>

namespace quaverly {

/// A row of a table.
struct NSIndexPath {
  size_t section = 0;
  size_t row = 0;

  static NSIndexPath indexPathForRowInSection(size_t row, size_t section) { return {section, row}; }
  auto operator<=>(const NSIndexPath&) const = default;
};

}  // namespace quaverly
