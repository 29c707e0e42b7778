#pragma once

#include <optional>

#include "Platform/UIKit/UIControl.h"
#include "Platform/UIKit/UIFont.h"
#include "Platform/UIKit/UIImage.h"

namespace quaverly {

enum class UIButtonType { Custom = 0, System = 1 };

/// A button with a title, an image or both. One look serves all its states. Main thread only.
class UIButton : public UIControl {
 public:
  explicit UIButton(UIButtonType type) : _type(type) {}
  static Ref<UIButton> buttonWithType(UIButtonType type) { return make<UIButton>(type); }

  UIButtonType buttonType() const { return _type; }

  const std::optional<std::string>& title() const { return _title; }
  void setTitle(std::optional<std::string> title) { set(_title, std::move(title)); }
  const Ref<UIImage>& image() const { return _image; }
  void setImage(Ref<UIImage> image) { set(_image, std::move(image)); }

  const UIFont& font() const { return _font; }
  void setFont(UIFont font) { set(_font, std::move(font)); }

  CGSize sizeThatFits(CGSize limit) const override;

 private:
  UIButtonType _type;
  std::optional<std::string> _title;
  Ref<UIImage> _image;
  UIFont _font = UIFont::fontWithNameSize("HelveticaNeue", 17);
};

/// A switch: on or off. Main thread only.
class UISwitch : public UIControl {
 public:
  UISwitch() : UIControl({0, 0, 51, 31}) {}

  bool isOn() const { return _on; }
  void setOn(bool on) { set(_on, on); }
  /// What a tap does: turns it, and tells.
  void toggle();

 private:
  bool _on = false;
};

}  // namespace quaverly
