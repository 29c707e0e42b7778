#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NSPlainValue.h"
#include "Platform/UIKit/UITargetAction.h"

namespace quaverly {

/// What a row shows and does. The numbers are the framework's own.
enum class PSCellType {
  group = 0,
  link = 1,
  linkList = 2,
  listItem = 3,
  titleValue = 4,
  slider = 5,
  switchCell = 6,
  staticText = 7,
  editText = 8,
  segment = 9,
  button = 13,
};

/// The type that a property list calls "PSSwitchCell"; nothing for one that is not known here.
std::optional<PSCellType> PSCellTypeFromString(std::string_view name);

/// One row of a pane, or the group that the rows behind it belong to. Main thread only.
class PSSpecifier : public NSObject {
 public:
  using Getter = std::function<NSPlainValue(PSSpecifier&)>;
  using Setter = std::function<void(const NSPlainValue&, PSSpecifier&)>;

  PSSpecifier(std::string name, PSCellType cellType) : _name(std::move(name)), _cellType(cellType) {}

  static Ref<PSSpecifier> groupSpecifierWithName(std::string name);

  /// A row whose value the target has, which is not owned. `setter` may be null for a row that nobody
  /// changes.
  template <class Target>
  static Ref<PSSpecifier> preferenceSpecifierNamedTargetSetGetCell(
      std::string name, Target* target,
      std::type_identity_t<void (Target::*)(const NSPlainValue&, PSSpecifier&)> setter,
      NSPlainValue (Target::*getter)(PSSpecifier&), PSCellType cellType) {
    auto specifier = make<PSSpecifier>(std::move(name), cellType);
    specifier->_getter = [target = Unowned<Target>(target), getter](PSSpecifier& asked) {
      const Ref<Target> kept(target.get());
      return kept ? (kept.get()->*getter)(asked) : NSPlainValue();
    };
    if (setter) {
      specifier->_setter = [target = Unowned<Target>(target), setter](const auto& value, PSSpecifier& asked) {
        if (const Ref<Target> kept(target.get()); kept) (kept.get()->*setter)(value, asked);
      };
    }
    return specifier;
  }

  const std::string& name() const { return _name; }
  PSCellType cellType() const { return _cellType; }

  /// Whatever else is known of the row; a null value for a property that is not there.
  const NSPlainValue& propertyForKey(std::string_view key) const { return _properties.objectForKey(key); }
  void setPropertyForKey(NSPlainValue value, std::string_view key) {
    _properties.setObjectForKey(std::move(value), key);
  }

  /// Keeps the row's value from now on, if the properties say where: under the text `key` in what the text
  /// `defaults` names. Until a person gives another it is that of `default`.
  void storeValue();

  /// The row's value, as the target has it; null when there is nobody to ask.
  NSPlainValue performGetter();
  /// The value as people read it: the text in `validTitles` that stands where `validValues` has the value,
  /// else the value itself.
  std::string titleOfValue();
  bool hasSetter() const { return _setter != nullptr; }
  void performSetterWithValue(const NSPlainValue& value);

  /// What a button does.
  void setButtonAction(UITargetAction action) { _buttonAction = std::move(action); }
  const std::optional<UITargetAction>& buttonAction() const { return _buttonAction; }

 private:
  std::string _name;
  PSCellType _cellType;
  NSDictionary _properties;
  Getter _getter;
  Setter _setter;
  std::optional<UITargetAction> _buttonAction;
};

}  // namespace quaverly
