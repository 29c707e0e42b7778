#pragma once

#include "Platform/Social/SLComposeViewController.h"

namespace quaverly {

/// The place of a share sheet's own look, which the host gives it. Main thread only.
class SLComposeView : public UIView {
 public:
  SLComposeView(CGRect frame, SLComposeViewController& controller) : UIView(frame), _controller(&controller) {
    setBackgroundColor(UIColor::whiteColor());
  }

  /// Null once the sheet is gone.
  SLComposeViewController* controller() const { return _controller.get(); }

 private:
  Unowned<SLComposeViewController> _controller;
};

}  // namespace quaverly
