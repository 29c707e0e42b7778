#pragma once

#include "Platform/UIKit/UIView.h"

namespace quaverly {

enum class UIActivityIndicatorViewStyle { WhiteLarge = 0, White = 1, Gray = 2 };

/// A turning wheel; seen while it turns. Main thread only.
class UIActivityIndicatorView : public UIView {
 public:
  explicit UIActivityIndicatorView(UIActivityIndicatorViewStyle style)
      : UIView(style == UIActivityIndicatorViewStyle::WhiteLarge ? CGRect{0, 0, 37, 37}
                                                                 : CGRect{0, 0, 20, 20}),
        _style(style) {}

  UIActivityIndicatorViewStyle activityIndicatorViewStyle() const { return _style; }
  bool isAnimating() const { return _animating; }
  void startAnimating() { set(_animating, true); }
  void stopAnimating() { set(_animating, false); }

 private:
  UIActivityIndicatorViewStyle _style;
  bool _animating = false;
};

}  // namespace quaverly
