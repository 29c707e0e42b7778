#include <turbojpeg.h>

#include <cstring>

#include "Platform/UIKit/ImageCoding.h"

namespace quaverly {
namespace {

/// A progressive file comes in about ten scans, each of which goes over the whole picture.
constexpr uint64_t mostScans = 100;
constexpr uint64_t mostPixelsScanned = 2'000'000'000;

struct Destroy {
  void operator()(void* handle) const { tjDestroy(handle); }
};
using Decompressor = std::unique_ptr<void, Destroy>;

/// How many times a scan begins. Within the data of a picture 0xff is always followed by zero or a restart
/// mark, so that no such mark is missed; one in a comment may be counted in addition.
uint64_t countScans(ImageBytes file) {
  constexpr uint8_t startOfScan = 0xda;
  uint64_t scans = 0;
  const uint8_t* at = file.data();
  const uint8_t* const end = at + file.size();
  while (at < end) {
    at = static_cast<const uint8_t*>(std::memchr(at, 0xff, static_cast<size_t>(end - at)));
    if (!at || at + 1 == end) break;
    scans += *++at == startOfScan;
  }
  return scans;
}

struct Header {
  int width = 0;
  int height = 0;
  int subsampling = 0;
  int colours = 0;
};

std::optional<Header> readHeader(const Decompressor& decompressor, ImageBytes file) {
  Header header;
  const int result = tjDecompressHeader3(decompressor.get(), file.data(), file.size(), &header.width,
                                         &header.height, &header.subsampling, &header.colours);
  if (result != 0 || header.width <= 0 || header.height <= 0) return std::nullopt;
  return header;
}

/// Decodes whatever is there; false when nothing is.
bool decode(const Decompressor& decompressor, ImageBytes file, const Header& header, int format,
            uint8_t* into) {
  const int result = tjDecompress2(decompressor.get(), file.data(), file.size(), into, header.width, 0,
                                   header.height, format, TJFLAG_ACCURATEDCT);
  return result == 0 || tjGetErrorCode(decompressor.get()) == TJERR_WARNING;
}

bool isPrinted(const Header& header) {
  return header.colours == TJCS_CMYK || header.colours == TJCS_YCCK;
}

/// Files for print hold their four inks inverted; makes colours of them where they are.
bool decodeInks(const Decompressor& decompressor, ImageBytes file, const Header& header,
                std::span<uint8_t> pixels) {
  if (!decode(decompressor, file, header, TJPF_CMYK, pixels.data())) return false;
  for (size_t i = 0; i < pixels.size(); i += CGImage::bytesPerPixel) {
    const unsigned black = pixels[i + 3];
    for (size_t c = 0; c < 3; ++c) pixels[i + c] = static_cast<uint8_t>(pixels[i + c] * black / 255);
    pixels[i + 3] = 255;
  }
  return true;
}

}  // namespace

std::optional<UIImage::PixelSize> inspectJPEG(ImageBytes file) {
  const Decompressor decompressor(tjInitDecompress());
  const auto header = readHeader(decompressor, file);
  if (!header) return std::nullopt;
  const UIImage::PixelSize size{static_cast<uint32_t>(header->width), static_cast<uint32_t>(header->height)};
  const uint64_t pixels = uint64_t{size.width} * size.height;
  const uint64_t scans = countScans(file);
  if (pixels > UIImage::mostPixels || scans > mostScans || pixels * scans > mostPixelsScanned)
    return std::nullopt;
  return orientationOfJPEG(file).uprightSize(size);
}

Ref<CGImage> decodeJPEG(ImageBytes file) {
  const Decompressor decompressor(tjInitDecompress());
  const auto header = readHeader(decompressor, file);
  if (!header) return nullptr;
  const auto width = static_cast<uint32_t>(header->width);
  const auto height = static_cast<uint32_t>(header->height);
  const size_t length = size_t{width} * height * CGImage::bytesPerPixel;
  auto pixels = std::make_unique<uint8_t[]>(length);
  const bool decoded = isPrinted(*header) ? decodeInks(decompressor, file, *header, {pixels.get(), length})
                                          : decode(decompressor, file, *header, TJPF_RGBA, pixels.get());
  return decoded ? uprightImage({width, height}, std::move(pixels), orientationOfJPEG(file)) : nullptr;
}

}  // namespace quaverly
