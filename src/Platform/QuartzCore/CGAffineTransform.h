#pragma once

#include "Platform/QuartzCore/CGGeometry.h"

namespace quaverly {

/// A linear map of points with a shift: x' = a x + c y + tx, y' = b x + d y + ty. The default is the
/// identity.
struct CGAffineTransform {
  double a = 1;
  double b = 0;
  double c = 0;
  double d = 1;
  double tx = 0;
  double ty = 0;

  bool isIdentity() const { return *this == CGAffineTransform(); }
  CGPoint apply(CGPoint point) const;
  bool operator==(const CGAffineTransform&) const = default;
};

CGAffineTransform CGAffineTransformMakeScale(double x, double y);
/// Turns by `angle` radians, clockwise on a screen whose y grows downwards.
CGAffineTransform CGAffineTransformMakeRotation(double angle);

/// The smallest upright rectangle around the map's image of `rect`.
CGRect CGRectApplyAffineTransform(CGRect rect, const CGAffineTransform& transform);

}  // namespace quaverly
