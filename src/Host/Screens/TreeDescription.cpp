#include "Host/Screens/TreeDescription.h"

namespace quaverly::screens {
namespace {

bool isClear(const UIView& view) {
  return !view.backgroundColor() || view.backgroundColor()->alpha <= 0;
}

/// Where the line below a row begins, and its colour. It begins below the text; that of a group's last row
/// goes from edge to edge. A clear row of a grouped table is no part of a group and has none.
Json separatorOf(const UITableView& table, NSIndexPath path, const UITableViewCell& cell) {
  const bool isGrouped = table.style() == UITableViewStyle::Grouped;
  if (table.separatorStyle() == UITableViewCellSeparatorStyle::None || (isGrouped && isClear(cell)))
    return nullptr;
  const bool endsGroup = isGrouped && path.row + 1 == table.numberOfRowsInSection(path.section);
  return {endsGroup ? 0 : cell.textLabel()->frame().x, cssColor(table.separatorColor())};
}

}  // namespace

NodeTexts TreeDescription::describe(const UIView& root) {
  _nodes.clear();
  add(root, describeNode(root, _images));
  return std::move(_nodes);
}

void TreeDescription::add(const UIView& view, Json node) {
  if (const auto* const table = dynamic_cast<const UITableView*>(&view))
    return addTable(*table, std::move(node));
  for (const auto& subview : view.subviews()) {
    node["children"].push_back(subview->identity());
    add(*subview, describeNode(*subview, _images));
  }
  _nodes[view.identity()] = node.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// Rows in their order first, then what lies above them.
void TreeDescription::addTable(const UITableView& table, Json node) {
  for (const auto path : table.indexPathsForVisibleRows()) {
    const auto cell = table.cellForRowAtIndexPath(path);
    node["children"].push_back(cell->identity());
    addCell(table, path, *cell);
  }
  for (const auto& subview : table.subviews()) {
    if (dynamic_cast<const UITableViewCell*>(subview.get())) continue;
    node["children"].push_back(subview->identity());
    Json child = describeNode(*subview, _images);
    child["raised"] = true;
    add(*subview, std::move(child));
  }
  _nodes[table.identity()] = node.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void TreeDescription::addCell(const UITableView& table, NSIndexPath path, const UITableViewCell& cell) {
  Json node = describeNode(cell, _images);
  node["row"] = path.row + 1;
  node["rows"] = table.numberOfRowsInSection(path.section);
  if (Json separator = separatorOf(table, path, cell); !separator.is_null())
    node["separator"] = std::move(separator);
  add(cell, std::move(node));
}

std::optional<RowInTable> rowOfCell(const UITableViewCell& cell) {
  auto* const table = dynamic_cast<UITableView*>(cell.superview());
  if (!table) return std::nullopt;
  for (const auto path : table->indexPathsForVisibleRows()) {
    if (table->cellForRowAtIndexPath(path).get() == &cell) return RowInTable{table, path};
  }
  return std::nullopt;
}

}  // namespace quaverly::screens
