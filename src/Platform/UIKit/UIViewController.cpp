#include "Platform/UIKit/UIViewController.h"

#include "Platform/Foundation/NSLog.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/UIKit/UINavigationController.h"
#include "Platform/UIKit/UIScreen.h"
#include "Platform/UIKit/UIWindow.h"

namespace quaverly {
namespace {

constexpr double transitionSeconds = 0.4;
constexpr unsigned fills = UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight;

void runLater(UIViewController::Completion completion) {
  if (completion) NSRunLoop::mainRunLoop().performBlock(std::move(completion));
}

/// Slides a view from one height to another, then does the rest.
void slide(const Ref<UIView>& view, double fromY, double toY, const std::function<void()>& then) {
  const CGRect place = view->frame();
  view->setFrame({place.x, fromY, place.width, place.height});
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(
      transitionSeconds, 0, UIViewAnimationOptionCurveEaseOut,
      [&] {
        view->setFrame({place.x, toY, place.width, place.height});
      },
      [then](bool) { then(); });
}

}  // namespace

UIViewController::UIViewController() : _navigationItem(make<UINavigationItem>()) {}

UIViewController::~UIViewController() = default;

const Ref<UIView>& UIViewController::view() {
  if (!_view) {
    loadView();
    if (!_view) UIViewController::loadView();
    viewDidLoad();
  }
  return _view;
}

void UIViewController::setView(Ref<UIView> view) {
  _view = std::move(view);
  CATransaction::noteChange();
}

void UIViewController::loadView() {
  setView(make<UIView>(UIScreen::mainScreen().bounds()));
}

UINavigationController* UIViewController::navigationController() const {
  for (auto* at = _parent.get(); at; at = at->_parent.get()) {
    if (auto* const navigation = dynamic_cast<UINavigationController*>(at)) return navigation;
  }
  return nullptr;
}

UIViewController* UIViewController::outermost() const {
  auto* at = const_cast<UIViewController*>(this);
  while (at->_parent) at = at->_parent.get();
  return at;
}

void UIViewController::presentViewControllerAnimatedCompletion(Ref<UIViewController> controller,
                                                               UIAnimated animated, Completion completion) {
  auto* const presenter = outermost();
  if (!controller) return;
  if (presenter->_presented || controller->_presenting) {
    NSLog("Attempt to present a screen over one that already presents another, or that is presented itself");
    return;
  }
  const auto& view = controller->view();
  presenter->_presented = controller;
  controller->_presenting = presenter;
  controller->viewWillAppear(animated);
  UIWindow* const window = presenter->view()->window();
  if (!window) return runLater(std::move(completion));
  view->setFrame(window->bounds());
  view->setAutoresizingMask(fills);
  window->addSubview(view);
  const auto covered = [below = presenter->view(), view, controller, completion] {
    // Nothing below can be seen, nor reached by keyboard.
    if (view->window() && controller->_presenting) below->setHidden(true);
    if (completion) completion();
  };
  if (animated == UIAnimated::No) return runLater(covered);
  slide(view, window->bounds().height, 0, covered);
}

void UIViewController::dismissViewControllerAnimatedCompletion(UIAnimated animated, Completion completion) {
  auto* const shown = outermost();
  if (shown->_presented) return shown->dismissPresented(animated, std::move(completion));
  if (auto* const presenter = shown->_presenting.get())
    return presenter->dismissPresented(animated, std::move(completion));
  runLater(std::move(completion));
}

void UIViewController::dismissPresented(UIAnimated animated, Completion completion) {
  const Ref<UIViewController> gone = std::exchange(_presented, nullptr);
  // What it presents itself goes with it.
  if (gone->_presented) gone->dismissPresented(UIAnimated::No, nullptr);
  gone->_presenting = nullptr;
  view()->setHidden(false);
  const auto view = gone->view();
  const auto uncovered = [gone, view, completion] {
    // It may have been presented again meanwhile.
    if (!gone->_presenting) view->removeFromSuperview();
    if (completion) completion();
  };
  const UIWindow* const window = view->window();
  if (!window || animated == UIAnimated::No) {
    view->removeFromSuperview();
    return runLater(std::move(completion));
  }
  slide(view, view->frame().y, window->bounds().height, uncovered);
}

}  // namespace quaverly
