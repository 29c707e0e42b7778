#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Platform/UIKit/NSIndexPath.h"
#include "Platform/UIKit/UIScrollView.h"
#include "Platform/UIKit/UITableViewCell.h"
#include "Platform/UIKit/UITableViewDelegate.h"

namespace quaverly {

enum class UITableViewStyle { Plain = 0, Grouped = 1 };
enum class UITableViewCellSeparatorStyle { None = 0, SingleLine = 1 };

/// Rows in sections. It asks for the rows and headers in sight and for no others, and only once it was laid
/// out in a window; rows that leave the sight are let go, or kept for reuse. Neither data source nor delegate
/// is owned. Main thread only.
class UITableView : public UIScrollView {
 public:
  UITableView(CGRect frame, UITableViewStyle style);

  UITableViewStyle style() const { return _style; }
  template <class T>
  void setDataSource(T* source) {
    _dataSource = source;
  }
  UITableViewDataSource* dataSource() const { return _dataSource.get(); }
  template <class T>
  void setDelegate(T* delegate) {
    _delegate = delegate;
  }
  UITableViewDelegate* delegate() const { return _delegate.get(); }

  double rowHeight() const { return _rowHeight; }
  void setRowHeight(double height) { set(_rowHeight, height); }
  UITableViewCellSeparatorStyle separatorStyle() const { return _separatorStyle; }
  void setSeparatorStyle(UITableViewCellSeparatorStyle style) { set(_separatorStyle, style); }
  const UIColor& separatorColor() const { return _separatorColor; }
  void setSeparatorColor(UIColor color) { set(_separatorColor, color); }
  /// Below the last row; without one, separators go on below it.
  const Ref<UIView>& tableFooterView() const { return _tableFooterView; }
  void setTableFooterView(Ref<UIView> view);

  /// Asks for the counts at once, and for headers and rows with the next layout.
  void reloadData();
  size_t numberOfSections() const { return _sections.size(); }
  size_t numberOfRowsInSection(size_t section) const;

  /// Lets `dequeue…` make cells of the class when none is left over.
  template <class Cell>
  void registerClassForCellReuseIdentifier(const std::string& identifier) {
    _cellMakers[identifier] = [identifier]() -> Ref<UITableViewCell> {
      const auto cell = make<Cell>();
      return Ref<UITableViewCell>(
          cell->initWithStyleReuseIdentifier(UITableViewCellStyle::Default, identifier));
    };
  }
  /// A cell that is out of sight, or null.
  Ref<UITableViewCell> dequeueReusableCellWithIdentifier(const std::string& identifier);
  /// The same, or a new one of the registered class; null when none is registered.
  Ref<UITableViewCell> dequeueReusableCellWithIdentifierForIndexPath(const std::string& identifier,
                                                                     NSIndexPath path);

  /// Null for a row or header that is out of sight.
  Ref<UITableViewCell> cellForRowAtIndexPath(NSIndexPath path) const;
  Ref<UIView> headerViewForSection(size_t section) const;
  std::vector<NSIndexPath> indexPathsForVisibleRows() const;

  std::optional<NSIndexPath> indexPathForSelectedRow() const { return _selected; }
  void deselectRowAtIndexPathAnimated(NSIndexPath path, UIAnimated animated);
  /// What a person does: selects the row, and tells.
  void tapRow(NSIndexPath path);

 protected:
  void layoutSubviews() override;
  void didMoveToWindow() override { setNeedsLayout(); }
  void didScroll() override;

 private:
  struct Section {
    size_t rows = 0;
    double top = 0;
    double headerHeight = 0;
    double rowHeight = 0;              // of every row, unless
    std::vector<double> rowBottoms{};  // each row has its own; measured from the first row's top
    double footerHeight = 0;

    double rowsTop() const { return top + headerHeight; }
    double rowTop(size_t row) const;
    double rowBottom(size_t row) const { return rowTop(row + 1); }
    double bottom() const { return rowTop(rows) + footerHeight; }
    /// The first row that ends below a place in the content.
    size_t firstRowBelow(double y) const;
  };
  struct SectionViews {
    Ref<UIView> header;
    Ref<UIView> footer;
  };

  void countRows();
  void measure();
  Section measured(size_t section, double top);
  void placeHeaders();
  void placeSectionViews(size_t section);
  void placeRows();
  void showRow(NSIndexPath path, std::map<NSIndexPath, Ref<UITableViewCell>>& before);
  void keepForReuse(const Ref<UITableViewCell>& cell);
  CGRect headerFrame(const Section& section) const;
  bool isInSight(double top, double bottom) const;

  UITableViewStyle _style;
  Unowned<UITableViewDataSource> _dataSource;
  Unowned<UITableViewDelegate> _delegate;
  double _rowHeight = 44;
  UITableViewCellSeparatorStyle _separatorStyle = UITableViewCellSeparatorStyle::SingleLine;
  UIColor _separatorColor = UIColor::colorWithRedGreenBlueAlpha(200 / 255.0, 199 / 255.0, 204 / 255.0, 1);
  Ref<UIView> _tableFooterView;
  std::vector<Section> _sections;
  std::map<size_t, SectionViews> _sectionViews;
  std::map<NSIndexPath, Ref<UITableViewCell>> _cells;
  std::map<std::string, std::vector<Ref<UITableViewCell>>> _reusable;
  std::map<std::string, std::function<Ref<UITableViewCell>()>> _cellMakers;
  std::optional<NSIndexPath> _selected;
  bool _counted = false;
  bool _fresh = false;  // the rows in sight are those of the last count
};

}  // namespace quaverly
