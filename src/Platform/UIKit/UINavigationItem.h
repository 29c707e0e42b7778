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
  void setTitle(std::optional<std::string> title) { changed(_title, std::move(title)); }
  /// In place of the title.
  const Ref<UIView>& titleView() const { return _titleView; }
  void setTitleView(Ref<UIView> view) { changed(_titleView, std::move(view)); }
  const Ref<UIBarButtonItem>& leftBarButtonItem() const { return _leftBarButtonItem; }
  void setLeftBarButtonItem(Ref<UIBarButtonItem> item) { changed(_leftBarButtonItem, std::move(item)); }
  const Ref<UIBarButtonItem>& rightBarButtonItem() const { return _rightBarButtonItem; }
  void setRightBarButtonItem(Ref<UIBarButtonItem> item) { changed(_rightBarButtonItem, std::move(item)); }

 private:
  template <class T>
  static void changed(T& field, T value) {
    field = std::move(value);
    CATransaction::noteChange();
  }

  std::optional<std::string> _title;
  Ref<UIView> _titleView;
  Ref<UIBarButtonItem> _leftBarButtonItem;
  Ref<UIBarButtonItem> _rightBarButtonItem;
};

}  // namespace quaverly
