#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSObject.h"
#include "Platform/QuartzCore/CGGeometry.h"
#include "Platform/QuartzCore/CGImage.h"

namespace quaverly {

/// Whether an image is drawn in its own colours or as a stencil in the tint colour.
enum class UIImageRenderingMode { automatic = 0, alwaysOriginal = 1, alwaysTemplate = 2 };

/// A picture: a file's, which is kept as it is and decoded when somebody wants its pixels, or one made of
/// pixels. Upright, however the camera was held, in its size and in its pixels. Never changes. Any thread.
class UIImage : public NSObject {
 public:
  enum class Format { jpeg, png };
  struct File {
    NSData data;
    Format format;
  };
  struct PixelSize {
    uint32_t width = 0;
    uint32_t height = 0;
  };

  /// More pixels than any cover; more would cost gigabytes.
  static constexpr uint64_t mostPixels = 100'000'000;
  /// Longer than a file of so many pixels.
  static constexpr uint64_t longestFile = uint64_t{512} << 20;

  /// The empty image, which has no size and shows nothing.
  UIImage() = default;

  /// A JPEG or PNG file, told by its content. Null for everything else: another format, one too large to
  /// decode with reasonable memory and time, one without a readable head. What is damaged behind the head
  /// shows when the pixels are wanted.
  static Ref<UIImage> imageWithData(const NSData& data);
  /// The same for the file at a device path, read whole. A name that ends in "@2x" or "@3x" before its
  /// extension gives the scale.
  static Ref<UIImage> imageWithContentsOfFile(std::string_view devicePath);
  /// An image of scale 1; null without pixels.
  static Ref<UIImage> imageWithCGImage(Ref<CGImage> bitmap);

  /// The same picture, to be drawn in that mode.
  Ref<UIImage> imageWithRenderingMode(UIImageRenderingMode mode) const;
  UIImageRenderingMode renderingMode() const { return _renderingMode; }

  PixelSize pixelSize() const { return _pixelSize; }
  /// Pixels for each point.
  double scale() const { return _scale; }
  /// In points.
  CGSize size() const { return {_pixelSize.width / _scale, _pixelSize.height / _scale}; }

  /// The file that the image was made from, if any.
  const std::optional<File>& file() const { return _file; }

  /// The pixels, decoded anew by each call when the image was made from a file. Null for the empty image and
  /// for a file that is damaged; a JPEG file that ends too early gives what there is of it.
  Ref<CGImage> bitmap() const;

  /// A file that a browser can show: the image's own, or else a PNG file, made anew by each call and for
  /// speed, not for size. Nothing for the empty image. Takes its time: not for the main thread.
  std::optional<File> encodedForDisplay() const;

  /// For those above: a file whose head was read, at a scale; and pixels.
  UIImage(File file, PixelSize pixelSize, double scale);
  explicit UIImage(Ref<CGImage> bitmap);

 private:
  std::optional<File> _file;
  Ref<CGImage> _bitmap;
  PixelSize _pixelSize;
  double _scale = 1;
  UIImageRenderingMode _renderingMode = UIImageRenderingMode::automatic;
};

/// The image as a JPEG file in full colour resolution (4:4:4), transparency laid on white. `quality` is from
/// 0 to 1. The same image gives the same bytes each time; the last few are remembered, since the songs of an
/// album share their cover. Nothing when the image is empty or cannot be decoded; a JPEG file that ends too
/// early gives what there is of it.
std::optional<NSData> UIImageJPEGRepresentation(const UIImage& image, double quality);

}  // namespace quaverly
