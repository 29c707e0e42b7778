#pragma once

#include "Platform/UIKit/UILabel.h"
#include "Platform/UIKit/UITableView.h"

namespace quaverly {

/// A section's title above or below its rows, where the delegate has no view of its own. Main thread only.
class UITableViewHeaderFooterView : public UIView {
 public:
  /// Null where the data source has no title.
  static Ref<UIView> header(UITableView& table, size_t section);
  static Ref<UIView> footer(UITableView& table, size_t section);
  /// The room that the table leaves for them, title or not.
  static double headerHeight(UITableView& table, size_t section);
  static double footerHeight(UITableView& table, size_t section);

  enum class Place { Header, Footer };
  UITableViewHeaderFooterView(Place place, UITableViewStyle style, std::string title);

  Place place() const { return _place; }
  const Ref<UILabel>& textLabel() const { return _textLabel; }

 protected:
  void layoutSubviews() override;

 private:
  Place _place;
  UITableViewStyle _style;
  Ref<UILabel> _textLabel;
};

}  // namespace quaverly
