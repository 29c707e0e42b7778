#include "Platform/CoreImage/CIContext.h"

#include <cmath>
#include <optional>

#include "Platform/CoreImage/GaussianBlur.h"

namespace quaverly {
namespace {

/// Far from any picture, and far from where whole numbers end.
constexpr double farthest = 1e9;

/// The whole pixels that a rectangle touches; nothing for none and for too many.
std::optional<PixelRect> pixelsIn(const CGRect& rect) {
  // Written so that what is not a number fails as well.
  if (!(rect.width > 0 && rect.height > 0)) return std::nullopt;
  if (!(std::abs(rect.x) < farthest && std::abs(rect.y) < farthest)) return std::nullopt;
  const double x = std::floor(rect.x);
  const double y = std::floor(rect.y);
  const double width = std::ceil(rect.maxX()) - x;
  const double height = std::ceil(rect.maxY()) - y;
  if (width * height > CIContext::mostPixels) return std::nullopt;
  return PixelRect{static_cast<int64_t>(x), static_cast<int64_t>(y), static_cast<int64_t>(width),
                   static_cast<int64_t>(height)};
}

}  // namespace

Ref<CIContext> CIContext::contextWithOptions(std::nullptr_t) {
  return make<CIContext>();
}

Ref<CGImage> CIContext::createCGImageFromRect(const Ref<CIImage>& image, const CGRect& rect) const {
  const auto region = pixelsIn(rect);
  if (!image || !region) return nullptr;
  const PixelRect onBitmap{region->x - image->x(), region->y - image->y(), region->width, region->height};
  return make<CGImage>(static_cast<uint32_t>(region->width), static_cast<uint32_t>(region->height),
                       gaussianBlur(*image->bitmap(), image->blurRadius(), onBitmap));
}

}  // namespace quaverly
