#pragma once

#include <algorithm>

namespace quaverly {

// Places and sizes on a screen, in points; y grows downwards.

struct CGPoint {
  double x = 0;
  double y = 0;
  bool operator==(const CGPoint&) const = default;
};

struct CGSize {
  double width = 0;
  double height = 0;
  bool operator==(const CGSize&) const = default;
};

struct CGRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  CGPoint origin() const { return {x, y}; }
  CGSize size() const { return {width, height}; }
  double midX() const { return x + width / 2; }
  double midY() const { return y + height / 2; }
  double maxX() const { return x + width; }
  double maxY() const { return y + height; }
  /// Whether the two share more than a border.
  bool intersects(const CGRect& other) const {
    return std::max(x, other.x) < std::min(maxX(), other.maxX()) &&
           std::max(y, other.y) < std::min(maxY(), other.maxY());
  }
  bool operator==(const CGRect&) const = default;
};

}  // namespace quaverly
