#include "Controllers/QuaverlyEnginesSettingsController.h"

#include <optional>
#include <utility>

#include "Other/LocalizedStrings.h"
#include "Platform/AppSupport/CPDistributedMessagingCenter.h"
#include "Platform/Foundation/NSClass.h"
#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSFileManager.h"
#include "Platform/Foundation/NSJSONSerialization.h"

namespace quaverly {
namespace {

const NSClassOf<QuaverlyEnginesSettingsController> enginesClass("QuaverlyEnginesSettingsController", "");

constexpr const char* enginesFolder = "/Library/PreferenceBundles/QuaverlySettings.bundle/engines/";
constexpr const char* ending = ".qvsc";
constexpr const char* valueKey = "value";
constexpr const char* pathKey = "engine_path";

/// What a description file says; nothing when it cannot be read or holds no JSON object.
std::optional<NSDictionary> descriptionAtPath(const std::string& path) {
  const auto data = NSData::dataWithContentsOfFile(path);
  if (!data || data->length() > NSJSONSerialization::largestText) return std::nullopt;
  auto object = NSJSONSerialization::JSONObjectWithText(data->text());
  auto* description = object ? object->dictionary() : nullptr;
  return description ? std::optional(std::move(*description)) : std::nullopt;
}

void tellAddOn() {
  if (!NSClassFromString("CPDistributedMessagingCenter")) return;
  const auto center = CPDistributedMessagingCenter::centerNamed("com.tolmarin.quaverly");
  center->sendMessageNameUserInfo("enginesChanged", std::nullopt);
}

}  // namespace

QuaverlyEnginesSettingsController::Specifiers QuaverlyEnginesSettingsController::specifiers() {
  if (!_specifiers) _specifiers = loadSpecifiers();
  return _specifiers;
}

QuaverlyEnginesSettingsController::Specifiers QuaverlyEnginesSettingsController::loadSpecifiers() {
  std::vector<Ref<PSSpecifier>> specifiers;
  const auto names = NSFileManager::defaultManager().contentsOfDirectoryAtPath(enginesFolder);
  if (!names) return std::make_shared<const std::vector<Ref<PSSpecifier>>>();
  for (const std::string_view name : *names) {
    if (!name.ends_with(ending)) continue;
    const std::string path = std::string(enginesFolder).append(name);
    const auto description = descriptionAtPath(path).value_or(NSDictionary());
    specifiers.push_back(
        PSSpecifier::groupSpecifierWithName(description.objectForKey("title").stringValue()));
    specifiers.push_back(rowNamed("ENGINE", description.objectForKey("engine")));
    specifiers.push_back(rowNamed("VERSION", description.objectForKey("version")));
    specifiers.push_back(rowNamed("DEVELOPER", description.objectForKey("developer")));
    specifiers.push_back(switchNamed("ENABLED", description.objectForKey("enabled"), path));
  }
  return std::make_shared<const std::vector<Ref<PSSpecifier>>>(std::move(specifiers));
}

Ref<PSSpecifier> QuaverlyEnginesSettingsController::rowNamed(std::string_view key, NSPlainValue value) {
  auto row = PSSpecifier::preferenceSpecifierNamedTargetSetGetCell(
      LocalizedStrings::languageSelectedStringForKey(key), this, nullptr,
      &QuaverlyEnginesSettingsController::customForSpec, PSCellType::titleValue);
  row->setPropertyForKey(std::move(value), valueKey);
  return row;
}

Ref<PSSpecifier> QuaverlyEnginesSettingsController::switchNamed(std::string_view key, NSPlainValue value,
                                                                const std::string& path) {
  auto row = PSSpecifier::preferenceSpecifierNamedTargetSetGetCell(
      LocalizedStrings::languageSelectedStringForKey(key), this,
      &QuaverlyEnginesSettingsController::setCustomForSpec, &QuaverlyEnginesSettingsController::customForSpec,
      PSCellType::switchCell);
  row->setPropertyForKey(std::move(value), valueKey);
  row->setPropertyForKey(path, pathKey);
  return row;
}

NSPlainValue QuaverlyEnginesSettingsController::customForSpec(PSSpecifier& specifier) {
  return specifier.propertyForKey(valueKey);
}

// The row's own value stays what it was: the switch itself shows the new one.
void QuaverlyEnginesSettingsController::setCustomForSpec(const NSPlainValue& value, PSSpecifier& specifier) {
  const std::string path = specifier.propertyForKey(pathKey).stringValue();
  if (auto description = descriptionAtPath(path)) {
    description->setObjectForKey(value, "enabled");
    const NSData text(NSJSONSerialization::prettyPrintedTextWithJSONObject(std::move(*description)));
    static_cast<void>(text.writeToFileAtomically(path));
  }
  tellAddOn();
}

}  // namespace quaverly
