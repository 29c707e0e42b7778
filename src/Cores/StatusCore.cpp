#include "Cores/StatusCore.h"

#include <numbers>

#include "Other/LocalizedStrings.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UIScreen.h"

namespace quaverly {
namespace {

constexpr double fadeSeconds = 0.1;
constexpr double messageSeconds = 2.0;
constexpr double swingSeconds = 0.6;
/// Ease out, and begin from the current state.
constexpr unsigned fadeOptions = 131076;
/// Allow user interaction, repeat and autoreverse.
constexpr unsigned swingOptions = 26;
constexpr unsigned flexibleMargins = 45;
constexpr unsigned flexibleSize = 18;

const CGAffineTransform shrunk = CGAffineTransformMakeScale(0.6, 0.6);
const CGAffineTransform normal = CGAffineTransformMakeScale(1.0, 1.0);

void shrinkAway(UIView& view) {
  view.setAlpha(0);
  view.setTransform(shrunk);
}

void grow(UIView& view) {
  view.setTransform(normal);
  view.setAlpha(1.0);
}

void addToKeyWindow(const Ref<UIView>& view) {
  if (auto* const window = UIApplication::sharedApplication().keyWindow()) window->addSubview(view);
}

CGPoint centerOf(CGRect rect) {
  return {rect.midX(), rect.midY()};
}

/// Six tenths of a circle, drawn as a line.
Ref<CAShapeLayer> ring(double diameter, UIColor color) {
  const auto layer = make<CAShapeLayer>();
  layer->setPath(CGPath::pathWithEllipseInRect({0, 0, diameter, diameter}));
  layer->setOpacity(1.0);
  layer->setFillColor(UIColor::clearColor());
  layer->setStrokeColor(color);
  layer->setStrokeStart(0.0);
  layer->setStrokeEnd(0.6);
  layer->setLineWidth(5.0);
  return layer;
}

}  // namespace

StatusCore& StatusCore::sharedInstance() {
  static StatusCore& instance = *(new StatusCore)->init();
  return instance;
}

StatusCore* StatusCore::init() {
  makeMessageCard();
  makeLoadingView();
  return this;
}

void StatusCore::makeMessageCard() {
  const CGRect screen = UIScreen::mainScreen().bounds();
  _messageView = make<UIView>(CGRect{30, 0, screen.width - 30, 100});
  _messageView->setCenter(centerOf(screen));
  _messageView->setBackgroundColor(
      UIColor::colorWithRedGreenBlueAlpha(245 / 255.0, 245 / 255.0, 245 / 255.0, 1.0));
  _messageView->layer()->setCornerRadius(4.0);
  _messageView->layer()->setMasksToBounds(true);
  _messageView->setAccessibilityTraits(UIAccessibilityTraitUpdatesFrequently);

  const CGSize card = _messageView->frame().size();
  _messageLabel = make<UILabel>(CGRect{0, 0, card.width, card.height});
  _messageLabel->setFont(UIFont::fontWithNameSize("Arial", 18));
  _messageLabel->setTextColor(UIColor::colorWithRedGreenBlueAlpha(68 / 255.0, 68 / 255.0, 68 / 255.0, 1.0));
  _messageLabel->setTextAlignment(NSTextAlignment::Center);
  _messageLabel->setLineBreakMode(NSLineBreakMode::ByWordWrapping);
  _messageLabel->setNumberOfLines(0);
  _messageView->addSubview(_messageLabel);
}

void StatusCore::makeLoadingView() {
  _loadingView = make<UIView>(UIScreen::mainScreen().bounds());
  _loadingView->setBackgroundColor(UIColor::clearColor());
  _loadingView->setAutoresizingMask(flexibleSize);
  _loadingView->setUserInteractionEnabled(false);

  const auto label = makeLoadingLabel();
  const auto container = make<UIView>(CGRect{0, 0, label->frame().width + 50, 50});
  label->setCenter({label->center().x, container->center().y});
  _loadingView->addSubview(container);
  container->setCenter(_loadingView->center());
  container->setAutoresizingMask(flexibleMargins);
  container->addSubview(label);
  makeRings(*container);
}

/// The word beside the rings.
Ref<UILabel> StatusCore::makeLoadingLabel() const {
  const CGRect screen = _loadingView->frame();
  auto label = make<UILabel>(CGRect{50, 0, screen.width - 50, screen.height});
  label->setFont(UIFont::fontWithNameSize("Arial", 18));
  label->setTextColor(UIColor::whiteColor());
  label->setTextAlignment(NSTextAlignment::Center);
  label->setLineBreakMode(NSLineBreakMode::ByWordWrapping);
  label->setNumberOfLines(0);
  label->setText(LocalizedStrings::languageSelectedStringForKey("LOADING"));
  label->sizeToFit();
  return label;
}

void StatusCore::makeRings(UIView& container) {
  _firstCircleView = make<UIImageView>(CGRect{0, 0, 45, 45});
  _secondCircleView = make<UIImageView>(CGRect{0, 0, 35, 35});
  _secondCircleView->setCenter(_firstCircleView->center());
  container.addSubview(_firstCircleView);
  container.addSubview(_secondCircleView);
  const auto blue = UIColor::colorWithRedGreenBlueAlpha(90 / 255.0, 160 / 255.0, 252 / 255.0, 1.0);
  const auto violet = UIColor::colorWithRedGreenBlueAlpha(208 / 255.0, 128 / 255.0, 245 / 255.0, 1.0);
  _firstCircleView->layer()->addSublayer(ring(45, blue));
  _secondCircleView->layer()->addSublayer(ring(35, violet));
}

void StatusCore::showLoading() {
  _loadingView->setFrame(UIScreen::mainScreen().bounds());
  NSRunLoop::mainRunLoop().performBlock([this] {
    shrinkAway(*_loadingView);
    addToKeyWindow(_loadingView);
    UIView::animateWithDurationDelayOptionsAnimationsCompletion(fadeSeconds, 0, fadeOptions,
                                                                [this] { grow(*_loadingView); });
    rotateLoading();
  });
}

void StatusCore::rotateLoading() {
  _firstCircleView->setTransform(CGAffineTransformMakeRotation(0));
  _secondCircleView->setTransform(CGAffineTransformMakeRotation(0));
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(swingSeconds, 0, swingOptions, [this] {
    _firstCircleView->setTransform(CGAffineTransformMakeRotation(std::numbers::pi));
    // The inner ring turns the other way, and not as far.
    _secondCircleView->setTransform(CGAffineTransformMakeRotation(-(std::numbers::pi - 1)));
  });
}

void StatusCore::hideLoading() {
  NSRunLoop::mainRunLoop().performBlock([this] {
    UIView::animateWithDurationDelayOptionsAnimationsCompletion(
        fadeSeconds, 0, fadeOptions, [this] { shrinkAway(*_loadingView); },
        [this](bool) { _loadingView->removeFromSuperview(); });
  });
}

void StatusCore::showTempMessage(std::optional<std::string> message) {
  _messageLabel->setText(std::move(message));
  shrinkAway(*_messageView);
  addToKeyWindow(_messageView);
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(
      fadeSeconds, 0, fadeOptions, [this] { grow(*_messageView); }, [this](bool) { fadeOutMessage(); });
}

void StatusCore::fadeOutMessage() {
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(
      fadeSeconds, messageSeconds, fadeOptions, [this] { shrinkAway(*_messageView); },
      [this](bool) { _messageView->removeFromSuperview(); });
}

}  // namespace quaverly
