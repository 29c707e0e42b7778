#pragma once

#include <cstdint>
#include <optional>

#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSObject.h"

namespace quaverly {

/// A picture. It keeps the file that it was made from, and decodes it when somebody wants its pixels. Any
/// thread.
class UIImage : public NSObject {
 public:
  enum class Format { jpeg, png };
  struct PixelSize {
    uint32_t width;
    uint32_t height;
  };

  /// More pixels than any cover; more would cost gigabytes.
  static constexpr uint64_t mostPixels = 100'000'000;

  UIImage(NSData file, Format format, PixelSize pixelSize)
      : _file(std::move(file)), _format(format), _pixelSize(pixelSize) {}

  /// A JPEG or PNG file, told by its content. Null for everything else: another format, one too large to
  /// decode with reasonable memory and time, one without a readable head. What is damaged behind the head
  /// shows when the pixels are wanted.
  static Ref<UIImage> imageWithData(const NSData& data);

  const NSData& file() const { return _file; }
  Format format() const { return _format; }
  PixelSize pixelSize() const { return _pixelSize; }

 private:
  NSData _file;
  Format _format;
  PixelSize _pixelSize;
};

/// The image as a JPEG file in full colour resolution (4:4:4), transparency laid on white. `quality` is from
/// 0 to 1. The same image gives the same bytes each time; the last few are remembered, since the songs of an
/// album share their cover. Nothing when the image cannot be decoded; a JPEG file that ends too early gives
/// what there is of it.
std::optional<NSData> UIImageJPEGRepresentation(const UIImage& image, double quality);

}  // namespace quaverly
