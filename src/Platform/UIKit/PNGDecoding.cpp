#include <png.h>

#include <algorithm>
#include <string_view>

#include "Platform/UIKit/ImageCoding.h"

namespace quaverly {
namespace {

/// What a file holds besides the picture: texts, profiles, times. Each costs the decoder memory.
constexpr size_t mostChunks = 200;

/// Deflate makes at most so many bytes out of one.
constexpr uint64_t mostInflation = 1032;

struct Chunk {
  std::string_view type;
  ImageBytes data;
};

/// The chunks of a file in order; ends at the first that does not fit into it.
class Chunks {
 public:
  explicit Chunks(ImageBytes file) : _rest(file.subspan(std::min(signatureLength, file.size()))) {}

  std::optional<Chunk> next() {
    constexpr size_t header = 8;
    constexpr size_t checksum = 4;
    if (_rest.size() < header + checksum) return std::nullopt;
    const size_t length = size_t{_rest[0]} << 24 | size_t{_rest[1]} << 16 | size_t{_rest[2]} << 8 | _rest[3];
    if (length > _rest.size() - header - checksum) return std::nullopt;
    const Chunk chunk{{reinterpret_cast<const char*>(_rest.data()) + 4, 4}, _rest.subspan(header, length)};
    _rest = _rest.subspan(header + length + checksum);
    return chunk;
  }

  static constexpr size_t signatureLength = 8;

 private:
  ImageBytes _rest;
};

/// libpng's reader of whole images, which keeps its error handling to itself.
struct Reader {
  png_image image{};

  explicit Reader(ImageBytes file) {
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, file.data(), file.size())) image.width = image.height = 0;
  }
  ~Reader() { png_image_free(&image); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
};

/// How many bytes the rows take before they are deflated, at least: one bit for each pixel, and a byte a row.
uint64_t leastRawLength(UIImage::PixelSize size, unsigned bitsPerPixel) {
  return ((uint64_t{size.width} * bitsPerPixel + 7) / 8 + 1) * size.height;
}

unsigned bitsPerPixel(uint8_t depth, uint8_t colourType) {
  switch (colourType) {
    case PNG_COLOR_TYPE_RGB:
      return depth * 3u;
    case PNG_COLOR_TYPE_GRAY_ALPHA:
      return depth * 2u;
    case PNG_COLOR_TYPE_RGB_ALPHA:
      return depth * 4u;
  }
  return depth;
}

uint32_t number(ImageBytes bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

void multiplyByAlpha(std::span<uint8_t> pixels) {
  for (size_t i = 0; i < pixels.size(); i += CGImage::bytesPerPixel) {
    const unsigned alpha = pixels[i + 3];
    for (size_t c = 0; c < 3; ++c) pixels[i + c] = static_cast<uint8_t>((pixels[i + c] * alpha + 127) / 255);
  }
}

/// Reads four channels into `into`, which has room for them.
bool read(Reader& reader, uint8_t* into) {
  reader.image.format = PNG_FORMAT_RGBA;
  return png_image_finish_read(&reader.image, nullptr, into, 0, nullptr) != 0;
}

}  // namespace

std::optional<UIImage::PixelSize> inspectPNG(ImageBytes file) {
  constexpr size_t headLength = 13;
  Chunks chunks(file);
  const auto head = chunks.next();
  if (!head || head->type != "IHDR" || head->data.size() < headLength) return std::nullopt;
  const UIImage::PixelSize size{number(head->data), number(head->data.subspan(4))};
  if (size.width == 0 || size.height == 0 || uint64_t{size.width} * size.height > UIImage::mostPixels)
    return std::nullopt;
  uint64_t pictureLength = 0;
  size_t others = 0;
  while (const auto chunk = chunks.next()) {
    if (chunk->type == "IDAT") pictureLength += chunk->data.size();
    others += chunk->type != "IDAT";
  }
  // A file that cannot hold what it announces would only cost the memory for it.
  const uint64_t raw = leastRawLength(size, bitsPerPixel(head->data[8], head->data[9]));
  if (others > mostChunks || raw / mostInflation > pictureLength) return std::nullopt;
  return size;
}

Ref<CGImage> decodePNG(ImageBytes file) {
  Reader reader(file);
  const uint32_t width = reader.image.width;
  const uint32_t height = reader.image.height;
  const bool hasAlpha = (reader.image.format & PNG_FORMAT_FLAG_ALPHA) != 0;
  const size_t length = size_t{width} * height * CGImage::bytesPerPixel;
  if (length == 0) return nullptr;
  auto pixels = std::make_unique_for_overwrite<uint8_t[]>(length);
  if (!read(reader, pixels.get())) return nullptr;
  if (hasAlpha) multiplyByAlpha({pixels.get(), length});
  return make<CGImage>(width, height, std::move(pixels));
}

}  // namespace quaverly
