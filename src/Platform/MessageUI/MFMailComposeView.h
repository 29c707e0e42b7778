#pragma once

#include "Platform/MessageUI/MFMailComposeViewController.h"

namespace quaverly {

/// The place of a composer's own look, which the host gives it. Main thread only.
class MFMailComposeView : public UIView {
 public:
  MFMailComposeView(CGRect frame, MFMailComposeViewController& controller)
      : UIView(frame), _controller(&controller) {
    setBackgroundColor(UIColor::whiteColor());
  }

  /// Null once the composer is gone.
  MFMailComposeViewController* controller() const { return _controller.get(); }

 private:
  Unowned<MFMailComposeViewController> _controller;
};

}  // namespace quaverly
