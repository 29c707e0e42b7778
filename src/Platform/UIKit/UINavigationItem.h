#pragma once

#include <optional>
#include <string>

#include "Platform/UIKit/UIBarButtonItem.h"
#include "Platform/UIKit/UIView.h"

namespace quaverly {

/// What the navigation bar shows while its controller is on top. Main thread only.
class UINavigationItem : public NSObject {
 public:
  const std::optional<std::string>& title() const { return _title; }
  void setTitle(std::optional<std::string> title) { change(_title, std::move(title)); }
  /// In place of the title.
  const Ref<UIView>& titleView() const { return _titleView; }
  void setTitleView(Ref<UIView> view) { change(_titleView, std::move(view)); }
  const Ref<UIBarButtonItem>& leftBarButtonItem() const { return _leftBarButtonItem; }
  void setLeftBarButtonItem(Ref<UIBarButtonItem> item) { change(_leftBarButtonItem, std::move(item)); }
  const Ref<UIBarButtonItem>& rightBarButtonItem() const { return _rightBarButtonItem; }
  void setRightBarButtonItem(Ref<UIBarButtonItem> item) { change(_rightBarButtonItem, std::move(item)); }

  /// The bar that shows it, which hears of changes. Not owned.
  void setBar(UIView* bar) { _bar = bar; }

 private:
  template <class T>
  void change(T& field, T value) {
    field = std::move(value);
    if (auto* const bar = _bar.get()) bar->setNeedsLayout();
  }

  std::optional<std::string> _title;
  Ref<UIView> _titleView;
  Ref<UIBarButtonItem> _leftBarButtonItem;
  Ref<UIBarButtonItem> _rightBarButtonItem;
  Unowned<UIView> _bar;
};

}  // namespace quaverly
