#include "Platform/CoreImage/CIImage.h"

#include <cmath>

namespace quaverly {

CIImage::CIImage(Ref<CGImage> bitmap, int64_t x, int64_t y, double blurRadius)
    : _bitmap(std::move(bitmap)), _x(x), _y(y), _blurRadius(blurRadius) {}

Ref<CIImage> CIImage::imageWithCGImage(Ref<CGImage> bitmap) {
  return bitmap ? make<CIImage>(std::move(bitmap), 0, 0, 0.0) : nullptr;
}

CGRect CIImage::extent() const {
  const double growth = std::ceil(3 * _blurRadius);
  return {static_cast<double>(_x) - growth, static_cast<double>(_y) - growth, _bitmap->width() + 2 * growth,
          _bitmap->height() + 2 * growth};
}

}  // namespace quaverly
