#pragma once

#include <string_view>

#include "Platform/CoreImage/CIImage.h"

namespace quaverly {

/// What makes one picture out of another. There is one filter, "CIGaussianBlur". One thread at a time.
class CIFilter : public NSObject {
 public:
  static constexpr double defaultRadius = 10;
  static constexpr double greatestRadius = 10'000;

  /// Null for a name that is not known.
  static Ref<CIFilter> filterWithName(std::string_view name);

  /// No image, and the default radius.
  void setDefaults();
  void setInputImage(Ref<CIImage> image) { _inputImage = std::move(image); }
  /// The standard deviation in pixels. One that is negative counts as 0, one that is too great as the
  /// greatest.
  void setInputRadius(double radius);

  /// Null without an input image.
  Ref<CIImage> outputImage() const;

 private:
  Ref<CIImage> _inputImage;
  double _inputRadius = defaultRadius;
};

}  // namespace quaverly
