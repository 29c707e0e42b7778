#pragma once

#include <optional>
#include <string>
#include <utility>

#include "Platform/Foundation/NSObject.h"
#include "Platform/UIKit/UIImage.h"
#include "Platform/UIKit/UITargetAction.h"
#include "Platform/UIKit/UIView.h"

namespace quaverly {

enum class UIBarButtonItemStyle { Plain = 0, Done = 2 };
enum class UIBarButtonSystemItem { Done = 0, Cancel = 1 };

/// A button in a navigation bar. Main thread only.
class UIBarButtonItem : public NSObject {
 public:
  UIBarButtonItem(std::optional<std::string> title, UITargetAction action)
      : _title(std::move(title)), _action(std::move(action)) {}
  UIBarButtonItem(Ref<UIImage> image, UIBarButtonItemStyle style, UITargetAction action)
      : _image(std::move(image)), _style(style), _action(std::move(action)) {}
  /// One that the platform names, in the user's language.
  UIBarButtonItem(UIBarButtonSystemItem item, UITargetAction action);

  const std::optional<std::string>& title() const { return _title; }
  void setTitle(std::optional<std::string> title) {
    _title = std::move(title);
    if (auto* const bar = _bar.get()) bar->setNeedsLayout();
  }
  const Ref<UIImage>& image() const { return _image; }
  UIBarButtonItemStyle style() const { return _style; }
  const std::optional<UIBarButtonSystemItem>& systemItem() const { return _systemItem; }

  /// What is read out in place of what the button shows.
  const std::optional<std::string>& accessibilityLabel() const { return _accessibilityLabel; }
  void setAccessibilityLabel(std::optional<std::string> label) { _accessibilityLabel = std::move(label); }

  /// The bar that shows it, which hears of changes. Not owned.
  void setBar(UIView* bar) { _bar = bar; }

  /// What a tap does.
  void sendAction() const { _action.send(); }

 private:
  std::optional<std::string> _title;
  Ref<UIImage> _image;
  UIBarButtonItemStyle _style = UIBarButtonItemStyle::Plain;
  std::optional<UIBarButtonSystemItem> _systemItem;
  std::optional<std::string> _accessibilityLabel;
  Unowned<UIView> _bar;
  UITargetAction _action;
};

}  // namespace quaverly
