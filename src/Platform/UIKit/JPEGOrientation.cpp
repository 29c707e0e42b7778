#include <algorithm>
#include <cstring>
#include <string_view>

#include "Platform/UIKit/ImageCoding.h"

namespace quaverly {
namespace {

using namespace std::string_view_literals;

constexpr ImageOrientation asStored{1};

/// As many pixels as lie together in memory.
constexpr ptrdiff_t bandWidth = 16;

void copyPixel(const uint8_t* from, ptrdiff_t fromPlace, uint8_t* into, ptrdiff_t place) {
  constexpr ptrdiff_t length = CGImage::bytesPerPixel;
  std::memcpy(into + place * length, from + fromPlace * length, length);
}

/// Numbers in a stretch of bytes; 0 where it has no more.
struct Numbers {
  ImageBytes bytes;
  bool lowestFirst = false;

  uint32_t at(uint64_t place, unsigned count) const {
    if (place + count > bytes.size()) return 0;
    uint32_t value = 0;
    for (unsigned i = 0; i < count; ++i)
      value = value << 8 | bytes[place + (lowestFirst ? count - 1 - i : i)];
    return value;
  }
};

bool beginsWith(ImageBytes bytes, std::string_view mark) {
  return bytes.size() >= mark.size() && std::memcmp(bytes.data(), mark.data(), mark.size()) == 0;
}

/// What a camera says of its picture: in one of the segments that come before the picture's data.
ImageBytes exifIn(ImageBytes file) {
  constexpr auto mark = "Exif\0\0"sv;
  constexpr uint32_t application1 = 0xffe1;
  constexpr uint32_t startOfScan = 0xffda;
  const Numbers numbers{file};
  uint64_t place = 2;
  while (numbers.at(place, 1) == 0xff && numbers.at(place, 2) != startOfScan) {
    const uint64_t length = numbers.at(place + 2, 2);  // its own two bytes included
    if (length < 2 || place + 2 + length > file.size()) return {};
    const auto content = file.subspan(place + 4, length - 2);
    if (numbers.at(place, 2) == application1 && beginsWith(content, mark))
      return content.subspan(mark.size());
    place += 2 + length;
  }
  return {};
}

}  // namespace

ImageOrientation orientationOfJPEG(ImageBytes file) {
  constexpr uint32_t orientationTag = 0x0112;
  constexpr uint32_t shortNumber = 3;
  constexpr uint64_t entryLength = 12;
  const auto exif = exifIn(file);
  const bool lowestFirst = beginsWith(exif, "II*\0"sv);
  if (!lowestFirst && !beginsWith(exif, "MM\0*"sv)) return asStored;
  const Numbers numbers{exif, lowestFirst};
  const uint64_t directory = numbers.at(4, 4);
  const uint64_t end = directory + 2 + entryLength * numbers.at(directory, 2);
  for (uint64_t entry = directory + 2; entry < end; entry += entryLength) {
    if (numbers.at(entry, 2) != orientationTag || numbers.at(entry + 2, 2) != shortNumber) continue;
    const uint32_t value = numbers.at(entry + 8, 2);
    return value >= 1 && value <= 8 ? ImageOrientation{static_cast<uint8_t>(value)} : asStored;
  }
  return asStored;
}

Ref<CGImage> uprightImage(UIImage::PixelSize stored, CGImage::Pixels pixels, ImageOrientation orientation) {
  if (orientation.value == asStored.value)
    return make<CGImage>(stored.width, stored.height, std::move(pixels));
  const auto size = orientation.uprightSize(stored);
  const ptrdiff_t width = stored.width;
  const ptrdiff_t height = stored.height;
  // Where the upright picture's first pixel is stored, and how far from it those to its right and below lie.
  const ptrdiff_t first =
      (orientation.isFromRight() ? width - 1 : 0) + (orientation.isFromBottom() ? (height - 1) * width : 0);
  const ptrdiff_t alongRow = orientation.isFromRight() ? -1 : 1;
  const ptrdiff_t alongColumn = orientation.isFromBottom() ? -width : width;
  const ptrdiff_t toRight = orientation.liesOnItsSide() ? alongColumn : alongRow;
  const ptrdiff_t toBelow = orientation.liesOnItsSide() ? alongRow : alongColumn;
  auto upright =
      std::make_unique_for_overwrite<uint8_t[]>(size_t{size.width} * size.height * CGImage::bytesPerPixel);
  // Band by band: what lies beside each other in one picture lies below each other in the other.
  for (ptrdiff_t band = 0; band < size.width; band += bandWidth) {
    const ptrdiff_t bandEnd = std::min<ptrdiff_t>(band + bandWidth, size.width);
    for (ptrdiff_t y = 0; y < size.height; ++y) {
      for (ptrdiff_t x = band; x < bandEnd; ++x)
        copyPixel(pixels.get(), first + x * toRight + y * toBelow, upright.get(), y * size.width + x);
    }
  }
  return make<CGImage>(size.width, size.height, std::move(upright));
}

}  // namespace quaverly
