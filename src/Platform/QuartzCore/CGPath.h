#pragma once

#include "Platform/QuartzCore/CGGeometry.h"

namespace quaverly {

/// An outline. Of all outlines the screens draw one kind: the ellipse inscribed in a rectangle.
struct CGPath {
  CGRect ellipse;

  static CGPath pathWithEllipseInRect(CGRect rect) { return {rect}; }
  bool operator==(const CGPath&) const = default;
};

}  // namespace quaverly
