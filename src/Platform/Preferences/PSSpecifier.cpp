#include "Platform/Preferences/PSSpecifier.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Platform/Preferences/PSStoredValues.h"

namespace quaverly {

std::optional<PSCellType> PSCellTypeFromString(std::string_view name) {
  using enum PSCellType;
  constexpr std::array<std::pair<std::string_view, PSCellType>, 12> types = {{
      {"PSGroupCell", group},
      {"PSLinkCell", link},
      {"PSLinkListCell", linkList},
      {"PSListItemCell", listItem},
      {"PSTitleValueCell", titleValue},
      {"PSSliderCell", slider},
      {"PSSwitchCell", switchCell},
      {"PSStaticTextCell", staticText},
      {"PSEditTextCell", editText},
      {"PSSegmentCell", segment},
      {"PSButtonCell", button},
      {"PSDefaultCell", staticText},
  }};
  const auto* found = std::ranges::find(types, name, &std::pair<std::string_view, PSCellType>::first);
  return found == types.end() ? std::nullopt : std::optional(found->second);
}

Ref<PSSpecifier> PSSpecifier::groupSpecifierWithName(std::string name) {
  return make<PSSpecifier>(std::move(name), PSCellType::group);
}

void PSSpecifier::storeValue() {
  const auto* key = propertyForKey("key").string();
  const auto* defaults = propertyForKey("defaults").string();
  if (!key || !defaults) return;
  _getter = [key = *key, defaults = *defaults](PSSpecifier& asked) {
    auto value = PSStoredValues::valueForKey(key, defaults);
    return value.isNull() ? asked.propertyForKey("default") : value;
  };
  _setter = [key = *key, defaults = *defaults](const NSPlainValue& value, PSSpecifier&) {
    PSStoredValues::setValueForKey(value, key, defaults);
  };
}

NSPlainValue PSSpecifier::performGetter() {
  return _getter ? _getter(*this) : NSPlainValue();
}

std::string PSSpecifier::titleOfValue() {
  const auto value = performGetter();
  const auto* values = propertyForKey("validValues").array();
  const auto* titles = propertyForKey("validTitles").array();
  if (!values || !titles) return value.stringValue();
  const auto at = static_cast<size_t>(std::ranges::find(*values, value) - values->begin());
  return at < std::min(values->size(), titles->size()) ? (*titles)[at].stringValue() : value.stringValue();
}

void PSSpecifier::performSetterWithValue(const NSPlainValue& value) {
  if (_setter) _setter(value, *this);
}

}  // namespace quaverly
