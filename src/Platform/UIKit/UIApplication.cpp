#include "Platform/UIKit/UIApplication.h"

#include "Platform/UIKit/UIScreen.h"
#include "Platform/UIKit/UIViewController.h"

namespace quaverly {
namespace {

/// A layout that asks for another one each time must not hang the device.
constexpr int mostLayoutPasses = 10;

}  // namespace

UIScreen& UIScreen::mainScreen() {
  static UIScreen screen;
  return screen;
}

UIApplication& UIApplication::sharedApplication() {
  // Never destroyed: views may be let go after everything static.
  static auto& application = *new UIApplication;
  return application;
}

void UIApplication::setKeyWindow(Ref<UIWindow> window) {
  _keyWindow = std::move(window);
  CATransaction::noteChange();
}

double UIApplication::statusBarHeight() const {
  return UIInterfaceOrientationIsPortrait(_orientation) ? 20 : 0;
}

void UIApplication::screenChanged(CGSize size, UIInterfaceOrientation orientation) {
  UIScreen::mainScreen().setSize(size);
  _orientation = orientation;
  if (!_keyWindow) return;
  _keyWindow->setFrame({0, 0, size.width, size.height});
  _keyWindow->setNeedsLayout();
  layoutIfNeeded();
}

void UIApplication::layoutIfNeeded() {
  if (!_keyWindow) return;
  for (int pass = 0; pass < mostLayoutPasses; ++pass) {
    const auto before = CATransaction::changeCount();
    _keyWindow->layoutIfNeeded();
    if (CATransaction::changeCount() == before) return;
  }
}

UIWindow::UIWindow(CGRect frame) : UIView(frame) {
  setBackgroundColor(UIColor::whiteColor());
}

UIWindow::~UIWindow() = default;

void UIWindow::setRootViewController(Ref<UIViewController> controller) {
  if (_rootViewController) _rootViewController->view()->removeFromSuperview();
  _rootViewController = std::move(controller);
  if (!_rootViewController) return;
  const auto& view = _rootViewController->view();
  view->setFrame(bounds());
  view->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
  addSubview(view);
}

void UIWindow::makeKeyAndVisible() {
  UIApplication::sharedApplication().setKeyWindow(Ref<UIWindow>(this));
}

}  // namespace quaverly
