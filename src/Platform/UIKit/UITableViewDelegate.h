#pragma once

#include <optional>
#include <string>

#include "Platform/UIKit/NSIndexPath.h"
#include "Platform/UIKit/UIScrollView.h"

namespace quaverly {

class UITableView;
class UITableViewCell;

/// Knows what a table shows.
class UITableViewDataSource {
 public:
  virtual ~UITableViewDataSource() = default;
  virtual size_t numberOfSectionsInTableView(UITableView&) { return 1; }
  virtual size_t tableViewNumberOfRowsInSection(UITableView&, size_t section) = 0;
  virtual Ref<UITableViewCell> tableViewCellForRowAtIndexPath(UITableView&, NSIndexPath path) = 0;
  virtual std::optional<std::string> tableViewTitleForHeaderInSection(UITableView&, size_t) {
    return std::nullopt;
  }
  virtual std::optional<std::string> tableViewTitleForFooterInSection(UITableView&, size_t) {
    return std::nullopt;
  }
};

/// Knows how high it is, and what a tap does. A height that is left to the table is nothing.
class UITableViewDelegate : public UIScrollViewDelegate {
 public:
  virtual std::optional<double> tableViewHeightForHeaderInSection(UITableView&, size_t) {
    return std::nullopt;
  }
  virtual Ref<UIView> tableViewViewForHeaderInSection(UITableView&, size_t) { return nullptr; }
  /// Asked for each row, unless there is nothing for the first one.
  virtual std::optional<double> tableViewHeightForRowAtIndexPath(UITableView&, NSIndexPath) {
    return std::nullopt;
  }
  virtual void tableViewDidSelectRowAtIndexPath(UITableView&, NSIndexPath) {}
};

}  // namespace quaverly
