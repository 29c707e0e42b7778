#include "Platform/UIKit/UIControl.h"

#include <algorithm>

#include "Platform/UIKit/TextMeasuring.h"
#include "Platform/UIKit/UIButton.h"
#include "Platform/UIKit/UITextField.h"

namespace quaverly {

void UIControl::sendActionsForControlEvents(UIControlEvents event) {
  if (!_enabled) return;
  const Ref<UIControl> kept(this);
  const auto actions = _actions;
  for (const auto& action : actions) {
    if (action.event == event) action.action.send();
  }
}

CGSize UIButton::sizeThatFits(CGSize) const {
  const CGSize picture = _image ? _image->size() : CGSize();
  const CGSize text = _title ? sizeOfText(*_title, _font) : CGSize();
  return {picture.width + text.width, std::max(picture.height, text.height)};
}

void UISwitch::toggle() {
  if (!isEnabled()) return;
  setOn(!_on);
  sendActionsForControlEvents(UIControlEvents::ValueChanged);
}

void UITextField::type(std::string text) {
  if (!isEnabled()) return;
  setText(std::move(text));
  sendActionsForControlEvents(UIControlEvents::EditingChanged);
}

}  // namespace quaverly
