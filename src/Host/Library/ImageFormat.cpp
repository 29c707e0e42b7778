#include "Host/Library/ImageFormat.h"

#include <algorithm>
#include <array>

namespace quaverly::library {
namespace {

constexpr std::array formats{
    ImageFormat{"\xff\xd8\xff", 0, "image/jpeg", "JPG"},
    ImageFormat{"\x89PNG", 0, "image/png", "PNG"},
    ImageFormat{"GIF8", 0, "image/gif", "GIF"},
    ImageFormat{"WEBP", 8, "image/webp", "WEB"},
    ImageFormat{"BM", 0, "image/bmp", "BMP"},
};
constexpr ImageFormat unknown{"", 0, "image/", "   "};

}  // namespace

const ImageFormat& imageFormatOf(std::string_view image) {
  const auto* found = std::ranges::find_if(formats, [&](const ImageFormat& format) {
    return image.substr(std::min(format.offset, image.size())).starts_with(format.magic);
  });
  return found == formats.end() ? unknown : *found;
}

}  // namespace quaverly::library
