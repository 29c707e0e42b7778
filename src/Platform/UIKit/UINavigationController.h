#pragma once

#include <vector>

#include "Platform/UIKit/UINavigationBar.h"
#include "Platform/UIKit/UIViewController.h"

namespace quaverly {

/// A stack of screens under one bar; the last one is seen. It owns them. Main thread only.
class UINavigationController : public UIViewController {
 public:
  UINavigationController();
  explicit UINavigationController(Ref<UIViewController> root);

  /// Below the status bar.
  const Ref<UINavigationBar>& navigationBar() const { return _bar; }

  const std::vector<Ref<UIViewController>>& viewControllers() const { return _controllers; }
  UIViewController* topViewController() const {
    return _controllers.empty() ? nullptr : _controllers.back().get();
  }
  void pushViewControllerAnimated(Ref<UIViewController> controller, UIAnimated animated);
  /// The root stays.
  void popViewControllerAnimated(UIAnimated animated);

  void loadView() override;
  void viewWillAppear(UIAnimated animated) override;

 protected:
  ~UINavigationController() override;

 private:
  class LayoutView;

  void layout();
  void showTop();
  void exchangeViews(const Ref<UIViewController>& from, const Ref<UIViewController>& to, double direction,
                     UIAnimated animated);
  void makeRoomForBar();

  Ref<UINavigationBar> _bar;
  Ref<UIView> _content;
  std::vector<Ref<UIViewController>> _controllers;
};

}  // namespace quaverly
