#include "Cells/QVTitleCell.h"

#include "Cores/CachesCore.h"
#include "Platform/Foundation/NSClass.h"

namespace quaverly {
namespace {

const NSClassOf<QVTitleCell> titleCellClass("QVTitleCell", "");

}  // namespace

QVTitleCell* QVTitleCell::initWithSpecifier(Ref<PSSpecifier> specifier) {
  if (!initWithStyleReuseIdentifierSpecifier(UITableViewCellStyle::Default, "QVTitleCell",
                                             std::move(specifier)))
    return nullptr;
  setBackgroundColor(UIColor::clearColor());
  _quaverlyLabel = addLabel(30);
  _quaverlyLabel->setText("Quaverly");
  _quaverlyLabel->setTextColor(UIColor::blackColor());
  _quaverlyLabel->setTextAlignment(NSTextAlignment::Center);
  _quaverlyLabel->setFont(UIFont::fontWithNameSize("HelveticaNeue-UltraLight", 40));
  _quaverlyLabel->sizeToFit();
  _tolmarinLabel = addLabel(65);
  _tolmarinLabel->setText("by Ferrowin (Tolmarin)");
  _tolmarinLabel->setTextColor(UIColor::grayColor());
  _tolmarinLabel->setTextAlignment(NSTextAlignment::Left);
  _tolmarinLabel->setFont(UIFont::fontWithNameSize("HelveticaNeue", 15));
  _tolmarinLabel->sizeToFit();
  addIcon();
  return this;
}

Ref<UILabel> QVTitleCell::addLabel(double y) {
  const CGRect place = frame();
  auto label = make<UILabel>(CGRect{center().x - 40, y, place.width - 115, place.height});
  label->setBackgroundColor(UIColor::clearColor());
  addSubview(label);
  return label;
}

// Left of the labels, ten points away from them.
void QVTitleCell::addIcon() {
  const auto picture = CachesCore::cachedImageWithContentsOfFileName("quaverly_icon");
  const auto stencil =
      picture ? picture->imageWithRenderingMode(UIImageRenderingMode::alwaysTemplate) : nullptr;
  const CGSize size = stencil ? stencil->size() : CGSize();
  _quaverlyIconView = make<UIImageView>(stencil);
  _quaverlyIconView->setFrame({center().x - 70 - size.width + 20, 20, size.width, size.height});
  addSubview(_quaverlyIconView);
}

}  // namespace quaverly
