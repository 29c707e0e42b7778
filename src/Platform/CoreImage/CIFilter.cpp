#include "Platform/CoreImage/CIFilter.h"

#include <algorithm>

#include "Platform/CoreImage/CIContext.h"

namespace quaverly {

Ref<CIFilter> CIFilter::filterWithName(std::string_view name) {
  return name == "CIGaussianBlur" ? make<CIFilter>() : nullptr;
}

void CIFilter::setDefaults() {
  _inputImage = nullptr;
  _inputRadius = defaultRadius;
}

void CIFilter::setInputRadius(double radius) {
  _inputRadius = radius > 0 ? std::min(radius, greatestRadius) : 0;
}

Ref<CIImage> CIFilter::outputImage() const {
  if (!_inputImage) return nullptr;
  const auto& input = *_inputImage;
  if (input.blurRadius() == 0) return make<CIImage>(input.bitmap(), input.x(), input.y(), _inputRadius);
  // A blur of a blur begins with the pixels of the first.
  const CGRect extent = input.extent();
  auto pixels = CIContext::contextWithOptions(nullptr)->createCGImageFromRect(_inputImage, extent);
  if (!pixels) return nullptr;
  return make<CIImage>(std::move(pixels), static_cast<int64_t>(extent.x), static_cast<int64_t>(extent.y),
                       _inputRadius);
}

}  // namespace quaverly
