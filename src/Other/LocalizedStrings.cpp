#include "Other/LocalizedStrings.h"

#include <optional>

#include "Platform/Foundation/NSBundle.h"
#include "Platform/Foundation/NSLocale.h"

namespace quaverly {
namespace {

constexpr std::string_view settingsBundlePath = "/Library/PreferenceBundles/QuaverlySettings.bundle";

/// What the language's table says for the key, which is the key itself when it lacks it; nothing without a
/// folder for the language.
std::optional<std::string> stringInLanguage(std::string_view language, std::string_view key) {
  const auto settings = NSBundle::bundleWithPath(settingsBundlePath);
  const auto path = settings ? settings->pathForResourceOfType(language, "lproj") : std::nullopt;
  const auto folder = path ? NSBundle::bundleWithPath(*path) : nullptr;
  if (!folder) return std::nullopt;
  return folder->localizedStringForKeyValueTable(key, "", std::nullopt);
}

}  // namespace

std::string LocalizedStrings::languageSelectedStringForKey(std::string_view key) {
  const auto& languages = NSLocale::preferredLanguages();
  const auto text = languages.empty() ? std::nullopt : stringInLanguage(languages.front(), key);
  return text && *text != key ? *text : englishStringForKey(key);
}

std::string LocalizedStrings::englishStringForKey(std::string_view key) {
  return stringInLanguage("en", key).value_or(std::string(key));
}

}  // namespace quaverly
