#include "Platform/Preferences/PSStoredValues.h"

#include <optional>
#include <utility>

#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSJSONSerialization.h"
#include "Platform/Foundation/NSLog.h"

namespace quaverly {
namespace {

/// Nothing for a name that would lead out of the folder.
std::optional<std::string> pathOf(std::string_view defaults) {
  if (defaults.empty() || defaults.starts_with('.') || defaults.find('/') != std::string_view::npos)
    return std::nullopt;
  return std::string(PSStoredValues::folder) + "/" + std::string(defaults) + ".json";
}

NSDictionary valuesIn(const std::string& path) {
  const auto data = NSData::dataWithContentsOfFile(path);
  if (!data || data->length() > NSJSONSerialization::largestText) return {};
  auto values = NSJSONSerialization::JSONObjectWithText(data->text());
  auto* const dictionary = values ? values->dictionary() : nullptr;
  return dictionary ? std::move(*dictionary) : NSDictionary();
}

}  // namespace

NSPlainValue PSStoredValues::valueForKey(std::string_view key, std::string_view defaults) {
  const auto path = pathOf(defaults);
  return path ? valuesIn(*path).objectForKey(key) : NSPlainValue();
}

void PSStoredValues::setValueForKey(NSPlainValue value, std::string_view key, std::string_view defaults) {
  const auto path = pathOf(defaults);
  if (!path) return NSLog("No values can be kept as \"" + std::string(defaults) + "\".");
  auto values = valuesIn(*path);
  values.setObjectForKey(std::move(value), key);
  const NSData text(NSJSONSerialization::prettyPrintedTextWithJSONObject(std::move(values)));
  static_cast<void>(text.writeToFileAtomically(*path));
}

}  // namespace quaverly
