#include "Platform/UIKit/UITableView.h"

#include <algorithm>
#include <cmath>
#include <ranges>

#include "Platform/UIKit/UITableViewHeaderFooterView.h"
#include "Platform/UIKit/UIWindow.h"

namespace quaverly {
namespace {

/// More cells than fit a screen are never wanted again at once.
constexpr size_t mostReusable = 32;

}  // namespace

UITableView::UITableView(CGRect frame, UITableViewStyle style) : UIScrollView(frame), _style(style) {
  if (style == UITableViewStyle::Grouped)
    setBackgroundColor(UIColor::colorWithRedGreenBlueAlpha(239 / 255.0, 239 / 255.0, 244 / 255.0, 1));
  else
    setBackgroundColor(UIColor::whiteColor());
}

void UITableView::setTableFooterView(Ref<UIView> view) {
  if (_tableFooterView) _tableFooterView->removeFromSuperview();
  _tableFooterView = std::move(view);
  if (_tableFooterView) addSubview(_tableFooterView);
}

void UITableView::reloadData() {
  countRows();
  _fresh = false;
  _selected.reset();
  setNeedsLayout();
}

void UITableView::countRows() {
  _counted = true;
  auto* const source = _dataSource.get();
  _sections.assign(source ? source->numberOfSectionsInTableView(*this) : 0, Section());
  for (size_t section = 0; section < _sections.size(); ++section)
    _sections[section].rows = source->tableViewNumberOfRowsInSection(*this, section);
}

size_t UITableView::numberOfRowsInSection(size_t section) const {
  return section < _sections.size() ? _sections[section].rows : 0;
}

void UITableView::layoutSubviews() {
  if (!window() || bounds().width <= 0 || bounds().height <= 0) return;
  if (!_counted) countRows();
  measure();
  if (!_fresh) {
    for (const auto& [section, views] : std::exchange(_sectionViews, {})) {
      if (views.header) views.header->removeFromSuperview();
      if (views.footer) views.footer->removeFromSuperview();
    }
  }
  placeHeaders();
  placeRows();
  if (_tableFooterView && _tableFooterView->frame().height > 0) {
    const CGRect old = _tableFooterView->frame();
    _tableFooterView->setFrame({0, contentSize().height - old.height, bounds().width, old.height});
  }
}

void UITableView::didScroll() {
  if (auto* const delegate = _delegate.get()) delegate->scrollViewDidScroll(*this);
  setNeedsLayout();
}

void UITableView::placeHeaders() {
  for (size_t section = 0; section < _sections.size(); ++section) {
    if (isInSight(_sections[section].top, _sections[section].bottom())) placeSectionViews(section);
  }
}

void UITableView::placeSectionViews(size_t section) {
  if (!_sectionViews.contains(section)) {
    auto* const delegate = _delegate.get();
    SectionViews made{delegate ? delegate->tableViewViewForHeaderInSection(*this, section) : nullptr,
                      nullptr};
    if (!made.header) made.header = UITableViewHeaderFooterView::header(*this, section);
    made.footer = UITableViewHeaderFooterView::footer(*this, section);
    if (made.header) addSubview(made.header);
    if (made.footer) addSubview(made.footer);
    _sectionViews[section] = made;
  }
  const auto& views = _sectionViews[section];
  const auto& place = _sections[section];
  if (views.header) views.header->setFrame(headerFrame(place));
  if (views.footer)
    views.footer->setFrame({0, place.bottom() - place.footerHeight, bounds().width, place.footerHeight});
}

/// In the plain style the header of the section in sight stays at the top.
CGRect UITableView::headerFrame(const Section& section) const {
  double top = section.top;
  if (_style == UITableViewStyle::Plain) {
    const double lowest = section.bottom() - section.footerHeight - section.headerHeight;
    top = std::max(top, std::min(contentOffset().y + contentInset().top, lowest));
  }
  return {0, top, bounds().width, section.headerHeight};
}

void UITableView::placeRows() {
  auto before = std::exchange(_cells, {});
  std::vector<Ref<UITableViewCell>> stale;
  if (!std::exchange(_fresh, true)) {
    for (const auto& [path, cell] : std::exchange(before, {})) stale.push_back(cell);
  }
  for (size_t index = 0; index < _sections.size(); ++index) {
    const Section section = _sections[index];
    if (!isInSight(section.top, section.bottom())) continue;
    for (size_t row = section.firstRowBelow(bounds().y); row < section.rows; ++row) {
      if (section.rowTop(row) >= bounds().maxY()) break;
      showRow({index, row}, before);
    }
  }
  for (const auto& [path, cell] : before) stale.push_back(cell);
  for (const auto& cell : stale) {
    const bool shown = std::ranges::any_of(_cells, [&](const auto& entry) { return entry.second == cell; });
    if (!shown) keepForReuse(cell);
  }
}

void UITableView::showRow(NSIndexPath path, std::map<NSIndexPath, Ref<UITableViewCell>>& before) {
  Ref<UITableViewCell> cell;
  if (const auto known = before.find(path); known != before.end()) {
    cell = std::move(known->second);
    before.erase(known);
  } else if (auto* const source = _dataSource.get()) {
    cell = source->tableViewCellForRowAtIndexPath(*this, path);
  }
  if (!cell || path.section >= _sections.size()) return;
  const auto& section = _sections[path.section];
  cell->setFrame(
      {0, section.rowTop(path.row), bounds().width, section.rowBottom(path.row) - section.rowTop(path.row)});
  cell->setSelected(_selected == path);
  // Below headers, which cover the rows that pass under them.
  if (cell->superview() != this) insertSubviewAtIndex(cell, 0);
  _cells[path] = std::move(cell);
}

void UITableView::keepForReuse(const Ref<UITableViewCell>& cell) {
  cell->removeFromSuperview();
  if (!cell->reuseIdentifier()) return;
  auto& kept = _reusable[*cell->reuseIdentifier()];
  if (kept.size() < mostReusable) kept.push_back(cell);
}

Ref<UITableViewCell> UITableView::dequeueReusableCellWithIdentifier(const std::string& identifier) {
  auto& kept = _reusable[identifier];
  if (kept.empty()) return nullptr;
  const auto cell = kept.back();
  kept.pop_back();
  cell->prepareForReuse();
  return cell;
}

Ref<UITableViewCell> UITableView::dequeueReusableCellWithIdentifierForIndexPath(const std::string& identifier,
                                                                                NSIndexPath) {
  if (auto cell = dequeueReusableCellWithIdentifier(identifier)) return cell;
  const auto maker = _cellMakers.find(identifier);
  return maker == _cellMakers.end() ? nullptr : maker->second();
}

Ref<UITableViewCell> UITableView::cellForRowAtIndexPath(NSIndexPath path) const {
  const auto found = _cells.find(path);
  return found == _cells.end() ? nullptr : found->second;
}

Ref<UIView> UITableView::headerViewForSection(size_t section) const {
  const auto found = _sectionViews.find(section);
  return found == _sectionViews.end() ? nullptr : found->second.header;
}

std::vector<NSIndexPath> UITableView::indexPathsForVisibleRows() const {
  const auto paths = std::views::keys(_cells);
  return {paths.begin(), paths.end()};
}

void UITableView::deselectRowAtIndexPathAnimated(NSIndexPath path, UIAnimated) {
  if (_selected != path) return;
  _selected.reset();
  if (const auto cell = cellForRowAtIndexPath(path)) cell->setSelected(false);
}

void UITableView::tapRow(NSIndexPath path) {
  if (path.row >= numberOfRowsInSection(path.section)) return;
  const Ref<UITableView> kept(this);
  _selected = path;
  if (const auto cell = cellForRowAtIndexPath(path)) cell->setSelected(true);
  if (auto* const delegate = _delegate.get()) delegate->tableViewDidSelectRowAtIndexPath(*this, path);
}

}  // namespace quaverly
