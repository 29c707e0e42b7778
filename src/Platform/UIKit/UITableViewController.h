#pragma once

#include "Platform/UIKit/UITableView.h"
#include "Platform/UIKit/UIViewController.h"

namespace quaverly {

/// A screen that is a table, whose data source and delegate it is. Main thread only.
class UITableViewController : public UIViewController,
                              public UITableViewDataSource,
                              public UITableViewDelegate {
 public:
  explicit UITableViewController(UITableViewStyle style = UITableViewStyle::Plain) : _style(style) {}

  /// The screen's view; loads it.
  Ref<UITableView> tableView() { return Ref<UITableView>(dynamic_cast<UITableView*>(view().get())); }

  void loadView() override;
  size_t tableViewNumberOfRowsInSection(UITableView&, size_t) override { return 0; }
  Ref<UITableViewCell> tableViewCellForRowAtIndexPath(UITableView&, NSIndexPath) override { return nullptr; }

 private:
  UITableViewStyle _style;
};

}  // namespace quaverly
