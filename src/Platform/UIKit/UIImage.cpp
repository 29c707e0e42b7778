#include "Platform/UIKit/UIImage.h"

#include <string>

#include "Platform/Foundation/NSString.h"
#include "Platform/UIKit/ImageCoding.h"

namespace quaverly {
namespace {

constexpr std::string_view jpegMark = "\xff\xd8\xff";
constexpr std::string_view pngMark = "\x89PNG\r\n\x1a\n";

Ref<UIImage> imageAtScale(const NSData& data, double scale) {
  if (data.length() > UIImage::longestFile) return nullptr;
  const auto text = data.text();
  if (text.starts_with(jpegMark)) {
    const auto size = inspectJPEG(imageBytes(data));
    return size ? make<UIImage>(UIImage::File{data, UIImage::Format::jpeg}, *size, scale) : nullptr;
  }
  if (text.starts_with(pngMark)) {
    const auto size = inspectPNG(imageBytes(data));
    return size ? make<UIImage>(UIImage::File{data, UIImage::Format::png}, *size, scale) : nullptr;
  }
  return nullptr;
}

/// What the end of a file's name says about its pixels.
double scaleInName(std::string_view path) {
  const std::string name = NSStringLastPathComponent(path);
  const std::string_view stem = std::string_view(name).substr(0, name.rfind('.'));
  if (stem.ends_with("@3x")) return 3;
  return stem.ends_with("@2x") ? 2 : 1;
}

}  // namespace

UIImage::UIImage(File file, PixelSize pixelSize, double scale)
    : _file(std::move(file)), _pixelSize(pixelSize), _scale(scale) {}

UIImage::UIImage(Ref<CGImage> bitmap)
    : _bitmap(std::move(bitmap)), _pixelSize{_bitmap->width(), _bitmap->height()} {}

Ref<UIImage> UIImage::imageWithData(const NSData& data) {
  return imageAtScale(data, 1);
}

Ref<UIImage> UIImage::imageWithContentsOfFile(std::string_view devicePath) {
  const auto file = NSData::dataWithContentsOfFile(devicePath);
  if (!file || file->length() > longestFile) return nullptr;
  // In memory: images live long, and an open file each is more than a process may have.
  return imageAtScale(NSData(file->text()), scaleInName(devicePath));
}

Ref<UIImage> UIImage::imageWithCGImage(Ref<CGImage> bitmap) {
  return bitmap ? make<UIImage>(std::move(bitmap)) : nullptr;
}

Ref<UIImage> UIImage::imageWithRenderingMode(UIImageRenderingMode mode) const {
  auto image = make<UIImage>();
  image->_file = _file;
  image->_bitmap = _bitmap;
  image->_pixelSize = _pixelSize;
  image->_scale = _scale;
  image->_renderingMode = mode;
  return image;
}

Ref<CGImage> UIImage::bitmap() const {
  if (!_file) return _bitmap;
  const auto bytes = imageBytes(_file->data);
  return _file->format == Format::jpeg ? decodeJPEG(bytes) : decodePNG(bytes);
}

std::optional<UIImage::File> UIImage::encodedForDisplay() const {
  if (_file) return _file;
  auto data = _bitmap ? encodePNG(*_bitmap) : std::nullopt;
  return data ? std::optional(File{std::move(*data), Format::png}) : std::nullopt;
}

}  // namespace quaverly
