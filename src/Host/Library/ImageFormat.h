#pragma once

#include <string_view>

namespace quaverly::library {

/// How tags name the format of a picture.
struct ImageFormat {
  std::string_view magic;  ///< what such a file has at `offset`
  size_t offset;
  std::string_view mediaType;
  std::string_view threeLetters;  ///< as ID3v2.2 wants it
};

/// The format of an image file by its content; one without a name of its own for an unknown format.
const ImageFormat& imageFormatOf(std::string_view image);

}  // namespace quaverly::library
