#include "Platform/Preferences/PSTableCell.h"

#include <algorithm>
#include <utility>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSClass.h"

namespace quaverly {
namespace {

const NSClassOf<PSTableCell> tableCellClass("PSTableCell", "");

constexpr std::chrono::milliseconds typingPause{500};

/// Whether the row says its value in words, at its end.
bool tellsValue(const PSSpecifier& specifier) {
  using enum PSCellType;
  const auto kinds = {titleValue, linkList, segment, slider};
  return std::ranges::find(kinds, specifier.cellType()) != kinds.end();
}

bool canBeTapped(const PSSpecifier& specifier) {
  return specifier.cellType() == PSCellType::link || specifier.cellType() == PSCellType::button;
}

}  // namespace

PSTableCell* PSTableCell::initWithSpecifier(Ref<PSSpecifier> specifier) {
  const auto style = tellsValue(*specifier) ? UITableViewCellStyle::Value1 : UITableViewCellStyle::Default;
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
    case PSCellType::linkList:
    case PSCellType::segment:
    case PSCellType::slider:
      return detailTextLabel()->setText(_specifier->titleOfValue());
    case PSCellType::switchCell:
      return addSwitch();
    case PSCellType::link:
      return setAccessoryType(UITableViewCellAccessoryType::DisclosureIndicator);
    case PSCellType::button:
      return textLabel()->setTextColor(tintColor());
    case PSCellType::editText:
      return addTextField();
    case PSCellType::group:
    case PSCellType::listItem:
    case PSCellType::staticText:
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

void PSTableCell::addTextField() {
  _textField = make<UITextField>();
  _textField->setText(_specifier->performGetter().stringValue());
  _textField->setAccessibilityLabel(_specifier->name());
  if (const auto* placeholder = _specifier->propertyForKey("placeholder").string())
    _textField->setPlaceholder(*placeholder);
  const auto keyboard = _specifier->propertyForKey("keyboard").stringValue();
  if (keyboard == "numbers") _textField->setKeyboardType(UIKeyboardType::NumberPad);
  _textField->addTargetActionForControlEvents(UITargetAction(this, &PSTableCell::textChanged),
                                              UIControlEvents::EditingChanged);
  contentView()->addSubview(_textField);
}

// A value is written to the disk: too much work for every key.
void PSTableCell::textChanged() {
  if (!_typing) _typing = Device::current().clock->after(typingPause, [this] { keepText(); });
}

void PSTableCell::keepText() {
  if (std::exchange(_typing, nullptr)) _specifier->performSetterWithValue(_textField->text());
}

/// A field begins behind the row's label, and takes the rest of the row.
void PSTableCell::layoutSubviews() {
  UITableViewCell::layoutSubviews();
  if (!_textField) return;
  const CGRect room = textLabel()->frame();
  const double label = std::min(textLabel()->sizeThatFits({}).width, room.width / 2);
  const double gap = label > 0 ? 15 : 0;
  textLabel()->setFrame({room.x, room.y, label, room.height});
  _textField->setFrame({room.x + label + gap, 0, room.width - label - gap, room.height});
}

}  // namespace quaverly
