#pragma once

#include "Platform/UIKit/UIView.h"

namespace quaverly {

class UIViewController;

/// The root of a tree of views. Main thread only.
class UIWindow : public UIView {
 public:
  explicit UIWindow(CGRect frame);

  const Ref<UIViewController>& rootViewController() const { return _rootViewController; }
  /// The controller whose view fills the window; owned.
  void setRootViewController(Ref<UIViewController> controller);

  /// Makes it the window that overlays are added to and that is shown. The application owns it from then on.
  void makeKeyAndVisible();

 protected:
  ~UIWindow() override;

 private:
  Ref<UIViewController> _rootViewController;
};

}  // namespace quaverly
