#pragma once

#include <cstdint>

#include "Platform/Foundation/NSObject.h"
#include "Platform/QuartzCore/CGGeometry.h"
#include "Platform/QuartzCore/CGImage.h"

namespace quaverly {

/// A picture on an endless, transparent plane, possibly as it will be once it is blurred: nothing is computed
/// before somebody asks a `CIContext` for pixels. Never changes. Any thread.
class CIImage : public NSObject {
 public:
  /// Pixels with their upper left corner at the origin; null without any.
  static Ref<CIImage> imageWithCGImage(Ref<CGImage> bitmap);

  /// Where on the plane it is not transparent, in pixels; y grows downwards, as everywhere. Three radii of a
  /// blur on each side belong to it.
  CGRect extent() const;

  /// For filters and contexts: `bitmap` with its corner at `x`, `y`, to be blurred.
  CIImage(Ref<CGImage> bitmap, int64_t x, int64_t y, double blurRadius);
  const Ref<CGImage>& bitmap() const { return _bitmap; }
  int64_t x() const { return _x; }
  int64_t y() const { return _y; }
  double blurRadius() const { return _blurRadius; }

 private:
  Ref<CGImage> _bitmap;
  int64_t _x;
  int64_t _y;
  double _blurRadius;
};

}  // namespace quaverly
