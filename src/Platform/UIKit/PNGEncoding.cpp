#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <string>
#include <vector>

#include "Platform/UIKit/ImageCoding.h"

namespace quaverly {
namespace {

/// More than what a file has besides its rows; a block that is not compressed is a few bytes longer.
constexpr size_t headLength = 4096;

/// libpng's writer into a text that has room for all. What it is asked for cannot fail but for want of
/// memory.
struct Writer {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png ? png_create_info_struct(png) : nullptr;

  Writer() = default;
  ~Writer() { png_destroy_write_struct(&png, &info); }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
};

void append(png_structp png, png_bytep bytes, size_t count) {
  static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(bytes), count);
}

void flush(png_structp) {}

/// Colours as they were before they were multiplied by alpha.
void divideByAlpha(std::span<const uint8_t> row, uint8_t* into) {
  for (size_t i = 0; i < row.size(); i += CGImage::bytesPerPixel) {
    const unsigned alpha = row[i + 3];
    for (size_t c = 0; c < 3; ++c) {
      const unsigned colour = alpha == 0 ? 0 : (row[i + c] * 255U + alpha / 2) / alpha;
      into[i + c] = static_cast<uint8_t>(std::min(colour, 255U));
    }
    into[i + 3] = static_cast<uint8_t>(alpha);
  }
}

/// Holds nothing that wants to be destroyed: an error leaves by a jump.
bool write(const Writer& writer, const CGImage& image, uint8_t* row, std::string* text) {
  if (setjmp(png_jmpbuf(writer.png)) != 0) return false;
  png_set_write_fn(writer.png, text, append, flush);
  png_set_IHDR(writer.png, writer.info, image.width(), image.height(), 8, PNG_COLOR_TYPE_RGB_ALPHA,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_compression_level(writer.png, 0);
  png_set_filter(writer.png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
  png_write_info(writer.png, writer.info);
  for (uint32_t y = 0; y < image.height(); ++y) {
    divideByAlpha(image.row(y), row);
    png_write_row(writer.png, row);
  }
  png_write_end(writer.png, nullptr);
  return true;
}

}  // namespace

std::optional<NSData> encodePNG(const CGImage& image) {
  const Writer writer;
  if (!writer.info) return std::nullopt;
  std::vector<uint8_t> row(image.row(0).size());
  std::string file;
  // A byte for each row, and a little for each block and chunk.
  file.reserve(image.bytes().size() / 100 * 101 + image.height() + headLength);
  if (!write(writer, image, row.data(), &file)) return std::nullopt;
  return NSData(std::move(file));
}

}  // namespace quaverly
