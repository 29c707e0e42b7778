#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

/// A picture's pixels: red, green, blue and alpha, a byte each, the colours multiplied by alpha; row by row
/// from the top, without gaps. Never empty, never changes. Any thread.
class CGImage : public NSObject {
 public:
  static constexpr size_t bytesPerPixel = 4;
  using Pixels = std::unique_ptr<uint8_t[]>;

  /// Takes over `width` times `height` pixels; neither is 0.
  CGImage(uint32_t width, uint32_t height, Pixels pixels)
      : _width(width), _height(height), _pixels(std::move(pixels)) {}

  uint32_t width() const { return _width; }
  uint32_t height() const { return _height; }

  std::span<const uint8_t> bytes() const { return {_pixels.get(), size_t{_width} * _height * bytesPerPixel}; }
  std::span<const uint8_t> row(size_t y) const {
    return bytes().subspan(y * _width * bytesPerPixel, _width * bytesPerPixel);
  }

 private:
  uint32_t _width;
  uint32_t _height;
  Pixels _pixels;
};

}  // namespace quaverly
