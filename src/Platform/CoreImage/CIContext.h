#pragma once

#include "Platform/CoreImage/CIImage.h"

namespace quaverly {

/// What computes the pixels of pictures. Holds nothing; any thread but the main one, which it would keep for
/// too long: ten megapixels take tens of milliseconds.
class CIContext : public NSObject {
 public:
  /// More pixels than any picture with its blurred border.
  static constexpr double mostPixels = 200'000'000;

  static Ref<CIContext> contextWithOptions(std::nullptr_t options);

  /// The pixels of a part of the plane; a part that does not begin or end at whole pixels is widened to them.
  /// Null without an image, for a rectangle with a negative, empty or endless side, and for one with more
  /// than `mostPixels`.
  Ref<CGImage> createCGImageFromRect(const Ref<CIImage>& image, const CGRect& rect) const;
};

}  // namespace quaverly
