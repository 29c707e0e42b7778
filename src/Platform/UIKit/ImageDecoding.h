#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "Platform/UIKit/UIImage.h"

namespace quaverly {

using ImageBytes = std::span<const uint8_t>;

/// Opaque pixels: red, green and blue, row by row without gaps.
struct Pixels {
  uint32_t width = 0;
  uint32_t height = 0;
  std::unique_ptr<uint8_t[]> rgb{};

  uint64_t byteCount() const { return uint64_t{width} * height * 3; }
};

/// The size that a file announces, when it is worth to be decoded: within `UIImage::mostPixels`, and with no
/// more parts than a decoder can go through in reasonable time. Allocates nothing.
std::optional<UIImage::PixelSize> inspectJPEG(ImageBytes file);
std::optional<UIImage::PixelSize> inspectPNG(ImageBytes file);

/// The pixels of a file that was inspected; nothing when it is damaged.
std::optional<Pixels> decodeJPEG(ImageBytes file);
std::optional<Pixels> decodePNG(ImageBytes file);

}  // namespace quaverly
