#include "Platform/UIKit/UITableViewController.h"

#include "Platform/UIKit/UIScreen.h"

namespace quaverly {

void UITableViewController::loadView() {
  const auto table = make<UITableView>(UIScreen::mainScreen().bounds(), _style);
  table->setDataSource(this);
  table->setDelegate(this);
  setView(table);
}

}  // namespace quaverly
