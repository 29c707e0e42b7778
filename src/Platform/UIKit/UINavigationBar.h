#pragma once

#include <functional>
#include <optional>
#include <string>

#include "Platform/UIKit/UIButton.h"
#include "Platform/UIKit/UILabel.h"
#include "Platform/UIKit/UINavigationItem.h"

namespace quaverly {

enum class UIBarMetrics { Default = 0 };

/// The bar above a screen: a button at each end and a title between. Main thread only.
class UINavigationBar : public UIView {
 public:
  explicit UINavigationBar(CGRect frame);

  /// The bar's own colour; nothing for the platform's.
  const std::optional<UIColor>& barTintColor() const { return _barTintColor; }
  void setBarTintColor(std::optional<UIColor> color) { set(_barTintColor, color); }
  /// Drawn in place of the bar's colour; an empty image makes it transparent.
  const Ref<UIImage>& backgroundImageForBarMetrics(UIBarMetrics) const { return _backgroundImage; }
  void setBackgroundImageForBarMetrics(Ref<UIImage> image, UIBarMetrics) {
    set(_backgroundImage, std::move(image));
  }
  /// Drawn in place of the line below; only seen together with a background image.
  const Ref<UIImage>& shadowImage() const { return _shadowImage; }
  void setShadowImage(Ref<UIImage> image) { set(_shadowImage, std::move(image)); }

  /// Shows an item; `backTitle` names the button that goes back, which is there when it is.
  void showItem(Ref<UINavigationItem> item, std::optional<std::string> backTitle, std::function<void()> back);
  const Ref<UINavigationItem>& topItem() const { return _item; }

  /// What a person taps; hidden when there is nothing there.
  const Ref<UIButton>& leftButton() const { return _left; }
  const Ref<UIButton>& rightButton() const { return _right; }
  const Ref<UIButton>& backButton() const { return _back; }

 protected:
  /// Shows what the item says now.
  void layoutSubviews() override;

 private:
  void showButtons();
  void showTitle();
  void placeButtons();
  void placeTitle();
  void tapLeft();
  void tapRight();
  void tapBack();

  Ref<UINavigationItem> _item;
  std::function<void()> _goBack;
  std::optional<std::string> _backTitle;
  Ref<UIButton> _left;
  Ref<UIButton> _right;
  Ref<UIButton> _back;
  Ref<UILabel> _titleLabel;
  Ref<UIView> _titleView;
  double _titleWidth = 0;  // what it asks for, while the room between the buttons comes and goes
  std::optional<UIColor> _barTintColor;
  Ref<UIImage> _backgroundImage;
  Ref<UIImage> _shadowImage;
};

}  // namespace quaverly
