#include "Platform/UIKit/UIImage.h"

#include <string_view>

#include "Platform/UIKit/ImageDecoding.h"

namespace quaverly {
namespace {

constexpr std::string_view jpegMark = "\xff\xd8\xff";
constexpr std::string_view pngMark = "\x89PNG\r\n\x1a\n";

ImageBytes bytesOf(const NSData& data) {
  const auto bytes = data.bytes();
  return {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()};
}

}  // namespace

Ref<UIImage> UIImage::imageWithData(const NSData& data) {
  const auto text = data.text();
  if (text.starts_with(jpegMark)) {
    const auto size = inspectJPEG(bytesOf(data));
    return size ? make<UIImage>(data, Format::jpeg, *size) : nullptr;
  }
  if (text.starts_with(pngMark)) {
    const auto size = inspectPNG(bytesOf(data));
    return size ? make<UIImage>(data, Format::png, *size) : nullptr;
  }
  return nullptr;
}

}  // namespace quaverly
