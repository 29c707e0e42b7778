#pragma once

#include "Platform/UIKit/UIImagePickerController.h"

namespace quaverly {

/// The place of a picker's own look, which the host gives it. Main thread only.
class UIImagePickerView : public UIView {
 public:
  UIImagePickerView(CGRect frame, UIImagePickerController& controller)
      : UIView(frame), _controller(&controller) {
    setBackgroundColor(UIColor::whiteColor());
  }

  /// Null once the picker is gone.
  UIImagePickerController* controller() const { return _controller.get(); }

 private:
  Unowned<UIImagePickerController> _controller;
};

}  // namespace quaverly
