#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "Platform/UIKit/UIImage.h"

namespace quaverly {

using ImageBytes = std::span<const uint8_t>;

inline ImageBytes imageBytes(const NSData& data) {
  const auto bytes = data.bytes();
  return {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()};
}

/// How a camera was held, as its files say: from 1, upright, to 8. What is stored first is the upright
/// picture's top left, or lies elsewhere.
struct ImageOrientation {
  uint8_t value = 1;

  /// Whether rows are stored as columns.
  bool liesOnItsSide() const { return value >= 5; }
  /// Whether the upright picture begins at the right, or at the bottom, of what is stored.
  bool isFromRight() const { return value == 2 || value == 3 || value == 7 || value == 8; }
  bool isFromBottom() const { return value == 3 || value == 4 || value == 6 || value == 7; }
  UIImage::PixelSize uprightSize(UIImage::PixelSize stored) const {
    return liesOnItsSide() ? UIImage::PixelSize{stored.height, stored.width} : stored;
  }
};

/// What the file says; 1 where it says nothing, or nothing that makes sense. Goes through it once at most.
ImageOrientation orientationOfJPEG(ImageBytes file);
/// A picture of stored pixels, turned and mirrored.
Ref<CGImage> uprightImage(UIImage::PixelSize stored, CGImage::Pixels pixels, ImageOrientation orientation);

/// The upright size that a file announces, when it is worth to be decoded: within `UIImage::mostPixels`, and
/// with no more parts than a decoder can go through in reasonable time. Allocates nothing.
std::optional<UIImage::PixelSize> inspectJPEG(ImageBytes file);
std::optional<UIImage::PixelSize> inspectPNG(ImageBytes file);

/// The pixels of a file that was inspected, upright; null when it is damaged.
Ref<CGImage> decodeJPEG(ImageBytes file);
Ref<CGImage> decodePNG(ImageBytes file);

/// A file of the pixels, without compression; nothing without memory for it.
std::optional<NSData> encodePNG(const CGImage& image);

}  // namespace quaverly
