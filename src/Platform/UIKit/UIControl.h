#pragma once

#include <vector>

#include "Platform/UIKit/UITargetAction.h"
#include "Platform/UIKit/UIView.h"

namespace quaverly {

enum class UIControlEvents { TouchUpInside = 1 << 6, ValueChanged = 1 << 12, EditingChanged = 1 << 17 };

/// A view that tells others what a person does with it. Targets are not owned. Main thread only.
class UIControl : public UIView {
 public:
  using UIView::UIView;

  bool isEnabled() const { return _enabled; }
  void setEnabled(bool enabled) { set(_enabled, enabled); }

  void addTargetActionForControlEvents(UITargetAction action, UIControlEvents event) {
    _actions.push_back({std::move(action), event});
  }
  /// Tells everybody who asked for the event; a disabled control tells nobody.
  void sendActionsForControlEvents(UIControlEvents event);

 private:
  struct Action {
    UITargetAction action;
    UIControlEvents event;
  };

  std::vector<Action> _actions;
  bool _enabled = true;
};

}  // namespace quaverly
