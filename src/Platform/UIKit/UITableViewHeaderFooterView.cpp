#include "Platform/UIKit/UITableViewHeaderFooterView.h"
#include "Platform/UIKit/TextMeasuring.h"

#include <algorithm>

#include "Platform/Foundation/NSString.h"

namespace quaverly {
namespace {

using View = UITableViewHeaderFooterView;

constexpr double margin = 15;
constexpr double gap = 7;
constexpr double plainHeaderHeight = 22;
constexpr double groupGap = 17.5;

std::optional<std::string> titleAbove(UITableView& table, size_t section) {
  auto* const source = table.dataSource();
  return source ? source->tableViewTitleForHeaderInSection(table, section) : std::nullopt;
}

std::optional<std::string> titleBelow(UITableView& table, size_t section) {
  auto* const source = table.dataSource();
  return source ? source->tableViewTitleForFooterInSection(table, section) : std::nullopt;
}

bool isText(const std::optional<std::string>& title) {
  return title && !title->empty();
}

double textHeight(const std::string& title, const UITableView& table) {
  const UIFont font = UIFont::fontWithNameSize("HelveticaNeue", 13);
  return sizeOfTextInWidth(title, font, table.bounds().width - 2 * margin, 0).height;
}

}  // namespace

Ref<UIView> View::header(UITableView& table, size_t section) {
  const auto title = titleAbove(table, section);
  if (!isText(title)) return nullptr;
  return make<UITableViewHeaderFooterView>(Place::Header, table.style(), *title);
}

Ref<UIView> View::footer(UITableView& table, size_t section) {
  const auto title = titleBelow(table, section);
  if (!isText(title)) return nullptr;
  return make<UITableViewHeaderFooterView>(Place::Footer, table.style(), *title);
}

double View::headerHeight(UITableView& table, size_t section) {
  const auto title = titleAbove(table, section);
  if (table.style() == UITableViewStyle::Plain) return isText(title) ? plainHeaderHeight : 0;
  const double above = section == 0 ? 2 * groupGap : groupGap;
  return isText(title) ? above + gap + textHeight(*title, table) : above;
}

double View::footerHeight(UITableView& table, size_t section) {
  const auto title = titleBelow(table, section);
  if (!isText(title)) return 0;
  return gap + textHeight(*title, table) + gap;
}

View::UITableViewHeaderFooterView(Place place, UITableViewStyle style, std::string title)
    : _place(place), _style(style), _textLabel(make<UILabel>()) {
  const bool plain = style == UITableViewStyle::Plain;
  _textLabel->setFont(UIFont::fontWithNameSize("HelveticaNeue", plain ? 14 : 13));
  _textLabel->setTextColor(
      plain ? UIColor::blackColor()
            : UIColor::colorWithRedGreenBlueAlpha(109 / 255.0, 109 / 255.0, 114 / 255.0, 1));
  _textLabel->setNumberOfLines(0);
  _textLabel->setLineBreakMode(NSLineBreakMode::ByWordWrapping);
  _textLabel->setText(std::move(title));
  if (plain) setBackgroundColor(UIColor::colorWithWhiteAlpha(247 / 255.0, 1));
  addSubview(_textLabel);
}

void View::layoutSubviews() {
  const double width = std::max(0.0, bounds().width - 2 * margin);
  const double height = _textLabel->sizeThatFits({width, 0}).height;
  double top = gap;
  if (_style == UITableViewStyle::Plain)
    top = (bounds().height - height) / 2;
  else if (_place == Place::Header)
    top = bounds().height - height - gap + 2;
  _textLabel->setFrame({margin, top, width, height});
}

}  // namespace quaverly
