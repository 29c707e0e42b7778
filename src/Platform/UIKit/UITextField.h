#pragma once

#include <optional>

#include "Platform/UIKit/UIControl.h"
#include "Platform/UIKit/UIFont.h"

namespace quaverly {

/// One line of text that a person can edit. Main thread only.
class UITextField : public UIControl {
 public:
  explicit UITextField(CGRect frame = {}) : UIControl(frame) {}

  /// Never absent: no text is the empty one.
  const std::string& text() const { return _text; }
  void setText(std::optional<std::string> text) { set(_text, std::move(text).value_or("")); }
  /// What a person does: the field has this text from now on, and tells.
  void type(std::string text);

  const UIFont& font() const { return _font; }
  void setFont(UIFont font) { set(_font, std::move(font)); }
  const UIColor& textColor() const { return _textColor; }
  void setTextColor(UIColor color) { set(_textColor, color); }
  NSTextAlignment textAlignment() const { return _textAlignment; }
  void setTextAlignment(NSTextAlignment alignment) { set(_textAlignment, alignment); }
  /// The keyboard that comes up; any text can be typed or pasted all the same.
  UIKeyboardType keyboardType() const { return _keyboardType; }
  void setKeyboardType(UIKeyboardType type) { set(_keyboardType, type); }
  const std::optional<std::string>& placeholder() const { return _placeholder; }
  void setPlaceholder(std::optional<std::string> placeholder) { set(_placeholder, std::move(placeholder)); }

 private:
  std::string _text;
  UIFont _font = UIFont::fontWithNameSize("HelveticaNeue", 17);
  UIColor _textColor = UIColor::blackColor();
  NSTextAlignment _textAlignment = NSTextAlignment::Left;
  UIKeyboardType _keyboardType = UIKeyboardType::Default;
  std::optional<std::string> _placeholder;
};

}  // namespace quaverly
