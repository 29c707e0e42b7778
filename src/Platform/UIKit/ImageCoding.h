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

/// The size that a file announces, when it is worth to be decoded: within `UIImage::mostPixels`, and with no
/// more parts than a decoder can go through in reasonable time. Allocates nothing.
std::optional<UIImage::PixelSize> inspectJPEG(ImageBytes file);
std::optional<UIImage::PixelSize> inspectPNG(ImageBytes file);

/// The pixels of a file that was inspected; null when it is damaged.
Ref<CGImage> decodeJPEG(ImageBytes file);
Ref<CGImage> decodePNG(ImageBytes file);

/// A file of the pixels, without compression; nothing without memory for it.
std::optional<NSData> encodePNG(const CGImage& image);

}  // namespace quaverly
