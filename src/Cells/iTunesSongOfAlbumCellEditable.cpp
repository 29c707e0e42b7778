#include "Cells/iTunesSongOfAlbumCellEditable.h"

namespace quaverly {
namespace {

constexpr auto borderColor = UIColor::colorWithRedGreenBlueAlpha(0.9098, 0.9098, 0.9098, 0.5);
constexpr double borderWidth = 0.8;

void drawBorder(const UITextField& field) {
  field.layer()->setBorderColor(borderColor);
  field.layer()->setBorderWidth(borderWidth);
}

}  // namespace

iTunesSongOfAlbumCellEditable* iTunesSongOfAlbumCellEditable::initWithStyleReuseIdentifier(
    UITableViewCellStyle style, std::optional<std::string> reuseIdentifier) {
  if (!UITableViewCell::initWithStyleReuseIdentifier(style, std::move(reuseIdentifier))) return nullptr;
  setBackgroundColor(UIColor::clearColor());
  setSelectionStyle(UITableViewCellSelectionStyle::None);
  makeTitleLabel();
  makeIndexLabel();
  contentView()->addSubview(_titleLabel);
  contentView()->addSubview(_indexLabel);
  return this;
}

void iTunesSongOfAlbumCellEditable::makeTitleLabel() {
  _titleLabel = make<UITextField>(CGRect{50, 10, contentView()->bounds().width - 70, 25});
  _titleLabel->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleTopMargin);
  _titleLabel->setFont(UIFont::fontWithNameSize("Arial", 15));
  _titleLabel->setTextColor(UIColor::blackColor());
  _titleLabel->setTextAlignment(NSTextAlignment::Left);
  _titleLabel->setAccessibilityLabel("Title");
  drawBorder(*_titleLabel);
}

void iTunesSongOfAlbumCellEditable::makeIndexLabel() {
  _indexLabel = make<UITextField>(CGRect{20, 10, 20, 25});
  _indexLabel->setAutoresizingMask(UIViewAutoresizingFlexibleTopMargin);
  _indexLabel->setFont(UIFont::fontWithNameSize("Arial", 14));
  _indexLabel->setTextColor(UIColor::colorWithRedGreenBlueAlpha(0.6078, 0.6078, 0.6078, 1.0));
  _indexLabel->setTextAlignment(NSTextAlignment::Left);
  _indexLabel->setKeyboardType(UIKeyboardType::NumberPad);
  _indexLabel->setAccessibilityLabel("Track number");
  drawBorder(*_indexLabel);
}

void iTunesSongOfAlbumCellEditable::prepareForReuse() {
  UITableViewCell::prepareForReuse();
  send(_titleLabel, &UITextField::setText, std::nullopt);
  send(_indexLabel, &UITextField::setText, std::nullopt);
}

}  // namespace quaverly
