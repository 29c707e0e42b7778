#include "Platform/Preferences/PSSpecifier.h"

#include <algorithm>
#include <array>
#include <utility>

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

NSPlainValue PSSpecifier::performGetter() {
  return _getter ? _getter(*this) : NSPlainValue();
}

void PSSpecifier::performSetterWithValue(const NSPlainValue& value) {
  if (_setter) _setter(value, *this);
}

}  // namespace quaverly
