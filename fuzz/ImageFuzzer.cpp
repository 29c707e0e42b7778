#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Platform/UIKit/UIImage.h"

using namespace quaverly;

/// More only takes time.
constexpr uint64_t mostPixelsDecoded = 1'000'000;

/// Whatever a picture announces, its pixels are as many.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const auto image =
      UIImage::imageWithData(NSData(std::string_view(reinterpret_cast<const char*>(bytes), size)));
  if (!image) return 0;
  const auto [width, height] = image->pixelSize();
  if (uint64_t{width} * height > mostPixelsDecoded) return 0;
  const auto bitmap = image->bitmap();
  if (bitmap && (bitmap->width() != width || bitmap->height() != height)) std::abort();
  return 0;
}
