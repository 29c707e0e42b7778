#pragma once

#include <optional>
#include <string>

#include "Platform/UIKit/UIFont.h"
#include "Platform/UIKit/UIView.h"

namespace quaverly {

/// A text to read. Main thread only.
class UILabel : public UIView {
 public:
  explicit UILabel(CGRect frame = {}) : UIView(frame) { setUserInteractionEnabled(false); }

  const std::optional<std::string>& text() const { return _text; }
  void setText(std::optional<std::string> text) { set(_text, std::move(text)); }
  const UIFont& font() const { return _font; }
  void setFont(UIFont font) { set(_font, std::move(font)); }
  const UIColor& textColor() const { return _textColor; }
  void setTextColor(UIColor color) { set(_textColor, color); }
  /// The text's colour while its row is pressed; its usual one when nothing is set.
  const std::optional<UIColor>& highlightedTextColor() const { return _highlightedTextColor; }
  void setHighlightedTextColor(std::optional<UIColor> color) { set(_highlightedTextColor, color); }
  NSTextAlignment textAlignment() const { return _textAlignment; }
  void setTextAlignment(NSTextAlignment alignment) { set(_textAlignment, alignment); }
  NSLineBreakMode lineBreakMode() const { return _lineBreakMode; }
  void setLineBreakMode(NSLineBreakMode mode) { set(_lineBreakMode, mode); }
  /// How many lines at most; 0 for as many as there are.
  int numberOfLines() const { return _numberOfLines; }
  void setNumberOfLines(int lines) { set(_numberOfLines, lines); }

  CGSize sizeThatFits(CGSize limit) const override;

 private:
  std::optional<std::string> _text;
  UIFont _font = UIFont::fontWithNameSize("HelveticaNeue", 17);
  UIColor _textColor = UIColor::blackColor();
  std::optional<UIColor> _highlightedTextColor;
  NSTextAlignment _textAlignment = NSTextAlignment::Left;
  NSLineBreakMode _lineBreakMode = NSLineBreakMode::ByTruncatingTail;
  int _numberOfLines = 1;
};

}  // namespace quaverly
