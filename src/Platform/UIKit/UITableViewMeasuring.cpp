#include <algorithm>
#include <cmath>

#include "Platform/UIKit/UITableView.h"
#include "Platform/UIKit/UITableViewHeaderFooterView.h"

namespace quaverly {

double UITableView::Section::rowTop(size_t row) const {
  if (rowBottoms.empty()) return rowsTop() + rowHeight * static_cast<double>(row);
  return row == 0 ? rowsTop() : rowsTop() + rowBottoms[std::min(row, rowBottoms.size()) - 1];
}

size_t UITableView::Section::firstRowBelow(double y) const {
  const double within = std::max(0.0, y - rowsTop());
  if (!rowBottoms.empty())
    return static_cast<size_t>(std::ranges::upper_bound(rowBottoms, within) - rowBottoms.begin());
  return rowHeight > 0 ? static_cast<size_t>(within / rowHeight) : 0;
}

/// Where everything lies, from the heights that the delegate tells and the counts that are known.
void UITableView::measure() {
  double top = 0;
  for (size_t section = 0; section < _sections.size(); ++section) {
    _sections[section] = measured(section, top);
    top = _sections[section].bottom();
  }
  const double footer = _tableFooterView ? _tableFooterView->frame().height : 0;
  setContentSize({bounds().width, top + footer});
}

UITableView::Section UITableView::measured(size_t index, double top) {
  auto* const delegate = _delegate.get();
  Section section{_sections[index].rows, top, 0, _rowHeight, {}, 0};
  const auto header = delegate ? delegate->tableViewHeightForHeaderInSection(*this, index) : std::nullopt;
  section.headerHeight = header.value_or(UITableViewHeaderFooterView::headerHeight(*this, index));
  section.footerHeight = UITableViewHeaderFooterView::footerHeight(*this, index);
  double bottom = 0;
  for (size_t row = 0; delegate && row < section.rows; ++row) {
    const auto height = delegate->tableViewHeightForRowAtIndexPath(*this, {index, row});
    if (!height && row == 0) break;
    bottom += height.value_or(_rowHeight);
    section.rowBottoms.push_back(bottom);
  }
  return section;
}

bool UITableView::isInSight(double top, double bottom) const {
  return top < bounds().maxY() && bottom > bounds().y;
}

}  // namespace quaverly
