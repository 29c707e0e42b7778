#include "Platform/Preferences/PSTableCell.h"

#include <utility>

#include "Platform/Foundation/NSClass.h"

namespace quaverly {
namespace {

const NSClassOf<PSTableCell> tableCellClass("PSTableCell", "");

UITableViewCellStyle styleOf(const PSSpecifier& specifier) {
  return specifier.cellType() == PSCellType::titleValue ? UITableViewCellStyle::Value1
                                                        : UITableViewCellStyle::Default;
}

bool canBeTapped(const PSSpecifier& specifier) {
  return specifier.cellType() == PSCellType::link || specifier.cellType() == PSCellType::button;
}

}  // namespace

PSTableCell* PSTableCell::initWithSpecifier(Ref<PSSpecifier> specifier) {
  const auto style = styleOf(*specifier);
  if (!initWithStyleReuseIdentifierSpecifier(style, std::nullopt, std::move(specifier))) return nullptr;
  textLabel()->setText(_specifier->name());
  showValue();
  return this;
}

PSTableCell* PSTableCell::initWithStyleReuseIdentifierSpecifier(UITableViewCellStyle style,
                                                                std::optional<std::string> reuseIdentifier,
                                                                Ref<PSSpecifier> specifier) {
  if (!initWithStyleReuseIdentifier(style, std::move(reuseIdentifier))) return nullptr;
  _specifier = std::move(specifier);
  if (!canBeTapped(*_specifier)) setSelectionStyle(UITableViewCellSelectionStyle::None);
  return this;
}

void PSTableCell::showValue() {
  switch (_specifier->cellType()) {
    case PSCellType::titleValue:
      return detailTextLabel()->setText(_specifier->performGetter().stringValue());
    case PSCellType::switchCell:
      return addSwitch();
    case PSCellType::link:
      return setAccessoryType(UITableViewCellAccessoryType::DisclosureIndicator);
    case PSCellType::button:
      return textLabel()->setTextColor(tintColor());
    case PSCellType::group:
    case PSCellType::linkList:
    case PSCellType::listItem:
    case PSCellType::slider:
    case PSCellType::staticText:
    case PSCellType::editText:
    case PSCellType::segment:
      break;
  }
}

void PSTableCell::addSwitch() {
  _control = make<UISwitch>();
  _control->setOn(_specifier->performGetter().boolValue());
  _control->setAccessibilityLabel(_specifier->name());
  _control->addTargetActionForControlEvents(UITargetAction(this, &PSTableCell::switchChanged),
                                            UIControlEvents::ValueChanged);
  setAccessoryView(_control);
}

void PSTableCell::switchChanged() {
  _specifier->performSetterWithValue(_control->isOn());
}

}  // namespace quaverly
