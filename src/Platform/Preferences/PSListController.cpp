#include "Platform/Preferences/PSListController.h"

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSClass.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/Foundation/NSPropertyListSerialization.h"

namespace quaverly {
namespace {

/// The words of a property list: in the table that is named like it, in the first of the user's languages
/// that has them.
class Labels {
 public:
  Labels(const NSBundle& bundle, std::string_view table) : _table(table) {
    for (const auto& language : Device::current().preferredLanguages) add(bundle, language);
    add(bundle, "en");
  }

  NSPlainValue localized(const NSPlainValue& value) const {
    if (const auto* texts = value.array()) return localized(*texts);
    const auto* key = value.string();
    if (!key) return value;
    for (const auto& language : _languages) {
      auto text = language->localizedStringForKeyValueTable(*key, std::nullopt, _table);
      if (text != *key) return text;
    }
    return value;
  }

 private:
  NSArray localized(const NSArray& texts) const {
    NSArray words;
    for (const auto& text : texts) words.push_back(localized(text));
    return words;
  }

  void add(const NSBundle& bundle, const std::string& language) {
    auto tables = NSBundle::bundleWithPath(bundle.bundlePath() + "/" + language + ".lproj");
    if (tables) _languages.push_back(std::move(tables));
  }

  std::string_view _table;
  std::vector<Ref<NSBundle>> _languages;
};

/// Makes specifiers of a property list's entries.
class Loading {
 public:
  Loading(std::string_view list, const NSBundle& bundle, PSListController* target)
      : _list(list), _labels(bundle, list), _target(target) {}

  void add(const NSPlainValue& item) {
    const auto* entries = item.dictionary();
    if (!entries) return leaveOut("an entry that is no dictionary");
    const std::string cell = entries->objectForKey("cell").stringValue();
    const auto type = PSCellTypeFromString(cell);
    if (!type) return leaveOut("a row of the unknown kind \"" + cell + "\"");
    auto specifier =
        make<PSSpecifier>(_labels.localized(entries->objectForKey("label")).stringValue(), *type);
    describe(*specifier, *entries);
    if (areClassesKnown(*specifier) && addAction(*specifier)) _specifiers.push_back(std::move(specifier));
  }

  std::string titleOf(const NSPlainValue& title) const { return _labels.localized(title).stringValue(); }

  std::vector<Ref<PSSpecifier>> take() { return std::move(_specifiers); }

 private:
  void describe(PSSpecifier& specifier, const NSDictionary& entries) const {
    for (const auto& [key, value] : entries.entries()) {
      const bool isText =
          key == "label" || key == "footerText" || key == "placeholder" || key == "validTitles";
      specifier.setPropertyForKey(isText ? _labels.localized(value) : value, key);
    }
    specifier.storeValue();
  }

  bool areClassesKnown(const PSSpecifier& specifier) {
    for (const char* key : {"detail", "cellClass"}) {
      const auto* name = specifier.propertyForKey(key).string();
      if (!name || NSClassFromString(*name)) continue;
      leaveOut("\"" + specifier.name() + "\", whose class \"" + *name + "\" is not there");
      return false;
    }
    return true;
  }

  bool addAction(PSSpecifier& specifier) {
    const auto* name = specifier.propertyForKey("action").string();
    if (!name) return true;
    auto action = _target ? _target->actionNamed(*name) : std::nullopt;
    if (action) {
      specifier.setButtonAction(std::move(*action));
      return true;
    }
    leaveOut("\"" + specifier.name() + "\", whose action \"" + *name + "\" is not there");
    return false;
  }

  void leaveOut(const std::string& what) const {
    NSLog("The property list \"" + _list + "\": left out " + what + ".");
  }

  std::string _list;
  Labels _labels;
  PSListController* _target;
  std::vector<Ref<PSSpecifier>> _specifiers;
};

const NSPlainValue& entryOf(const std::optional<NSPlainValue>& list, std::string_view key) {
  static const NSPlainValue none;
  const auto* dictionary = list ? list->dictionary() : nullptr;
  return dictionary ? dictionary->objectForKey(key) : none;
}

const NSArray& itemsOf(const std::optional<NSPlainValue>& list) {
  static const NSArray none;
  const auto* items = entryOf(list, "items").array();
  return items ? *items : none;
}

}  // namespace

std::optional<UITargetAction> PSListController::actionNamed(std::string_view) {
  return std::nullopt;
}

PSListController::Specifiers PSListController::loadSpecifiersFromPlistNameTarget(std::string_view name,
                                                                                 PSListController* target) {
  std::vector<Ref<PSSpecifier>> specifiers;
  if (_bundle) {
    const std::string path = _bundle->bundlePath() + "/" + std::string(name) + ".plist";
    const auto list = NSPropertyListSerialization::propertyListWithContentsOfFile(path);
    if (list && !entryOf(list, "items").array())
      NSLog("The property list \"" + std::string(name) + "\" has no items.");
    Loading loading(name, *_bundle, target);
    const auto title = loading.titleOf(entryOf(list, "title"));
    if (!title.empty() && !this->title()) setTitle(title);
    for (const auto& item : itemsOf(list)) loading.add(item);
    specifiers = loading.take();
  }
  return std::make_shared<const std::vector<Ref<PSSpecifier>>>(std::move(specifiers));
}

}  // namespace quaverly
