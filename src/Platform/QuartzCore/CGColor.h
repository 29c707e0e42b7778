#pragma once

namespace quaverly {

/// A colour as components from 0 to 1, alpha last. The default is clear.
struct CGColor {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 0;

  bool operator==(const CGColor&) const = default;
};

}  // namespace quaverly
