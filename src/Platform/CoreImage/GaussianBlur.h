#pragma once

#include <cstdint>

#include "Platform/QuartzCore/CGImage.h"

namespace quaverly {

/// A part of the plane that a picture lies in, in whole pixels. The picture's own begins at 0, 0.
struct PixelRect {
  int64_t x;
  int64_t y;
  int64_t width;
  int64_t height;
};

/// What a Gaussian of standard deviation `sigma` makes of a picture, in the given part of the plane, which is
/// not empty. What lies outside the picture is transparent. Differs from a true Gaussian, rounded, by less
/// than 0.3 levels of 255. Needs memory for the result and for a few lines. Any thread, but it takes its
/// time.
CGImage::Pixels gaussianBlur(const CGImage& picture, double sigma, const PixelRect& region);

}  // namespace quaverly
