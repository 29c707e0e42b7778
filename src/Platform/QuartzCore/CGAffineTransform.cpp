#include "Platform/QuartzCore/CGAffineTransform.h"

#include <cmath>

namespace quaverly {

CGPoint CGAffineTransform::apply(CGPoint point) const {
  return {a * point.x + c * point.y + tx, b * point.x + d * point.y + ty};
}

CGAffineTransform CGAffineTransformMakeScale(double x, double y) {
  return {x, 0, 0, y, 0, 0};
}

CGAffineTransform CGAffineTransformMakeRotation(double angle) {
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  return {cosine, sine, -sine, cosine, 0, 0};
}

CGRect CGRectApplyAffineTransform(CGRect rect, const CGAffineTransform& transform) {
  const CGPoint corners[] = {transform.apply({rect.x, rect.y}), transform.apply({rect.maxX(), rect.y}),
                             transform.apply({rect.x, rect.maxY()}),
                             transform.apply({rect.maxX(), rect.maxY()})};
  CGPoint least = corners[0];
  CGPoint most = corners[0];
  for (const auto& corner : corners) {
    least = {std::min(least.x, corner.x), std::min(least.y, corner.y)};
    most = {std::max(most.x, corner.x), std::max(most.y, corner.y)};
  }
  return {least.x, least.y, most.x - least.x, most.y - least.y};
}

}  // namespace quaverly
