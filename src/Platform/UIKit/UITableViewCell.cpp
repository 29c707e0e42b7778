#include "Platform/UIKit/UITableViewCell.h"

#include <algorithm>

namespace quaverly {
namespace {

constexpr double margin = 15;
constexpr double disclosureWidth = 33;

double lineHeight(const Ref<UILabel>& label) {
  return label && label->text() && !label->text()->empty() ? label->sizeThatFits({}).height : 0;
}

}  // namespace

UITableViewCell::UITableViewCell()
    : UIView({0, 0, 320, 44}),
      _contentView(make<UIView>(CGRect{0, 0, 320, 44})),
      _imageView(make<UIImageView>()),
      _textLabel(make<UILabel>()) {
  setBackgroundColor(UIColor::whiteColor());
  _contentView->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
  addSubview(_contentView);
}

UITableViewCell* UITableViewCell::initWithStyleReuseIdentifier(UITableViewCellStyle style,
                                                               std::optional<std::string> reuseIdentifier) {
  _style = style;
  _reuseIdentifier = std::move(reuseIdentifier);
  _contentView->addSubview(_imageView);
  _contentView->addSubview(_textLabel);
  if (style == UITableViewCellStyle::Default) return this;
  _detailTextLabel = make<UILabel>();
  _detailTextLabel->setFont(
      UIFont::fontWithNameSize("HelveticaNeue", style == UITableViewCellStyle::Subtitle ? 12 : 17));
  if (style == UITableViewCellStyle::Value1) _detailTextLabel->setTextColor(UIColor::grayColor());
  _contentView->addSubview(_detailTextLabel);
  return this;
}

void UITableViewCell::setAccessoryType(UITableViewCellAccessoryType type) {
  set(_accessoryType, type);
  setNeedsLayout();
}

void UITableViewCell::setAccessoryView(Ref<UIView> view) {
  if (_accessoryView) _accessoryView->removeFromSuperview();
  _accessoryView = std::move(view);
  if (_accessoryView) addSubview(_accessoryView);
  setNeedsLayout();
}

void UITableViewCell::layoutSubviews() {
  const double width = bounds().width - placeAccessory();
  _contentView->setFrame({0, 0, width, bounds().height});
  const CGSize picture = _imageView->image() ? _imageView->image()->size() : CGSize();
  _imageView->setFrame({margin, (bounds().height - picture.height) / 2, picture.width, picture.height});
  placeTexts(picture.width > 0 ? margin + picture.width + margin : margin, width - margin);
}

/// The width at the row's end that is not the content's.
double UITableViewCell::placeAccessory() {
  if (_accessoryView) {
    const CGSize size = _accessoryView->bounds().size();
    _accessoryView->setFrame(
        {bounds().width - margin - size.width, (bounds().height - size.height) / 2, size.width, size.height});
    return size.width + margin;
  }
  return _accessoryType == UITableViewCellAccessoryType::DisclosureIndicator ? disclosureWidth : 0;
}

void UITableViewCell::placeTexts(double left, double right) {
  const double width = std::max(0.0, right - left);
  const double height = bounds().height;
  if (_style == UITableViewCellStyle::Subtitle) {
    const double first = lineHeight(_textLabel);
    const double second = lineHeight(_detailTextLabel);
    const double top = (height - first - second) / 2;
    _textLabel->setFrame({left, top, width, first});
    _detailTextLabel->setFrame({left, top + first, width, second});
    return;
  }
  const double detail = _detailTextLabel ? std::min(width, _detailTextLabel->sizeThatFits({}).width) : 0;
  const double gap = detail > 0 ? 10 : 0;
  _textLabel->setFrame({left, 0, std::max(0.0, width - detail - gap), height});
  if (_detailTextLabel) _detailTextLabel->setFrame({right - detail, 0, detail, height});
}

}  // namespace quaverly
