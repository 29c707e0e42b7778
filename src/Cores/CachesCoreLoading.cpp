#include "Cores/CachesCore.h"
#include "Platform/CoreImage/CIContext.h"
#include "Platform/CoreImage/CIFilter.h"
#include "Platform/Foundation/NSURL.h"
#include "Platform/UIKit/UIActivityIndicatorView.h"

namespace quaverly {
namespace {

constexpr unsigned allMargins = UIViewAutoresizingFlexibleLeftMargin | UIViewAutoresizingFlexibleRightMargin |
                                UIViewAutoresizingFlexibleTopMargin | UIViewAutoresizingFlexibleBottomMargin;

Ref<UIActivityIndicatorView> addSpinner(UIImageView& imageView) {
  auto spinner = make<UIActivityIndicatorView>(UIActivityIndicatorViewStyle::WhiteLarge);
  spinner->setCenter({imageView.bounds().midX(), imageView.bounds().midY()});
  spinner->setAutoresizingMask(allMargins);
  imageView.addSubview(spinner);
  spinner->startAnimating();
  return spinner;
}

/// An image view that waits for its picture, with a spinner on it.
struct WaitingView {
  Ref<UIImageView> imageView;
  Ref<UIActivityIndicatorView> spinner;

  explicit WaitingView(const Ref<UIImageView>& view)
      : imageView(view), spinner(view ? addSpinner(*view) : nullptr) {}

  void show(const Ref<UIImage>& image) const {
    if (!imageView) return;
    spinner->removeFromSuperview();
    imageView->setImage(image);
  }
};

using Load = std::function<Ref<UIImage>()>;

/// Loads on a worker and shows on the main thread. The views travel there and back, and the worker keeps
/// nothing of them: they may only die on the main thread.
void loadLater(const Ref<UIImageView>& imageView, Load load) {
  auto waiting = std::make_shared<WaitingView>(imageView);
  CachesCore::OperationsQueue().addOperationWithBlock([waiting, load = std::move(load)] {
    auto image = load();
    NSOperationQueue::mainQueue().addOperationWithBlock(
        [back = std::move(*waiting), image = std::move(image)] { back.show(image); });
  });
}

Ref<UIImage> imageOfUrl(const std::string& url) {
  const auto parsed = NSURL::URLWithString(url);
  const auto data = parsed ? NSData::dataWithContentsOfURL(*parsed) : std::nullopt;
  auto image = data ? UIImage::imageWithData(*data) : nullptr;
  if (image) CachesCore::CachedImages()->setObjectForKey(image, url);
  return image;
}

Ref<UIImage> blurredImageOfUrl(const std::string& url, int radius, const std::string& key) {
  auto plain = CachesCore::CachedImages()->objectForKey(url);
  if (!plain) plain = imageOfUrl(url);
  auto blurred = CachesCore::blurredImageWithBlur(plain, radius);
  if (blurred) CachesCore::CachedImages()->setObjectForKey(blurred, key);
  return blurred;
}

/// What is shown of a blurred picture: as much as the picture itself has, from the middle, without a margin.
CGRect cropOf(const CGRect& extent, const CGSize& size) {
  return {extent.x + (extent.width - size.width) * 0.5 + extent.width / 30,
          extent.y + (extent.height - size.height) * 0.5 + extent.height / 30,
          size.width - extent.width / 15 + 1,  // wider by a point than high, on purpose
          size.height - extent.height / 15};
}

}  // namespace

void CachesCore::setImageViewWithContentOfUrl(const Ref<UIImageView>& imageView, std::string_view url) {
  if (const auto image = CachedImages()->objectForKey(url)) {
    send(imageView, &UIImageView::setImage, image);
    return;
  }
  loadLater(imageView, [url = std::string(url)] { return imageOfUrl(url); });
}

void CachesCore::setImageViewWithContentOfUrlWithBlur(const Ref<UIImageView>& imageView, std::string_view url,
                                                      int radius) {
  const auto key = std::string(url).append("-blur-").append(std::to_string(radius));
  if (const auto image = CachedImages()->objectForKey(key)) {
    send(imageView, &UIImageView::setImage, image);
    return;
  }
  loadLater(imageView, [url = std::string(url), radius, key] { return blurredImageOfUrl(url, radius, key); });
}

Ref<UIImage> CachesCore::blurredImageWithBlur(const Ref<UIImage>& image, int radius) {
  const auto filter = CIFilter::filterWithName("CIGaussianBlur");
  filter->setDefaults();
  filter->setInputImage(image ? CIImage::imageWithCGImage(image->bitmap()) : nullptr);
  filter->setInputRadius(radius);
  const auto output = filter->outputImage();
  if (!output) return nullptr;
  const auto context = CIContext::contextWithOptions(nullptr);
  return UIImage::imageWithCGImage(
      context->createCGImageFromRect(output, cropOf(output->extent(), image->size())));
}

}  // namespace quaverly
