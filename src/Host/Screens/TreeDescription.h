#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "Host/Screens/NodeDescription.h"
#include "Platform/UIKit/UITableView.h"

namespace quaverly::screens {

/// The nodes of a tree, written as JSON, by the numbers of their views.
using NodeTexts = std::map<uint64_t, std::string>;

/// Describes the whole tree below a view, for a page. Main thread.
class TreeDescription {
 public:
  explicit TreeDescription(ShownImages& images) : _images(images) {}

  NodeTexts describe(const UIView& root);

 private:
  void add(const UIView& view, Json node);
  void addTable(const UITableView& table, Json node);
  void addCell(const UITableView& table, NSIndexPath path, const UITableViewCell& cell);

  ShownImages& _images;
  NodeTexts _nodes;
};

/// The visible row that a cell is, and its table; nothing for a cell out of sight.
struct RowInTable {
  UITableView* table;
  NSIndexPath path;
};
std::optional<RowInTable> rowOfCell(const UITableViewCell& cell);

}  // namespace quaverly::screens
