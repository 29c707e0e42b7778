#include "Platform/Foundation/NSDateFormatter.h"

#include <algorithm>
#include <compare>
#include <memory>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/Formatting/DateFormat.h"
#include "Platform/Foundation/Formatting/PreparedOnce.h"
#include "Platform/Foundation/NSTimeZone.h"

namespace quaverly {
namespace {

// File systems hold dates that no calendar reaches. They are shown as the last that all of them do.
constexpr std::chrono::sys_seconds latest(std::chrono::days(100'000'000));
constexpr std::chrono::sys_seconds earliest = std::chrono::sys_seconds() - std::chrono::days(100'000'000);

}  // namespace

/// A pattern in a locale and a zone.
struct NSDateFormatter::Prepared {
  struct Key {
    std::string_view pattern;
    std::string_view locale;
    std::string_view zone;
    auto operator<=>(const Key&) const = default;
  };

  explicit Prepared(const Key& key)
      : pattern(key.pattern),
        locale(key.locale),
        zoneName(key.zone),
        zone(NSTimeZone::timeZoneWithName(zoneName)),
        format(DateFormat::prepare(pattern, locale)) {}

  Key key() const { return {pattern, locale, zoneName}; }

  std::string pattern;
  std::string locale;
  std::string zoneName;
  NSTimeZone zone;
  std::unique_ptr<const DateFormat> format;
};

void NSDateFormatter::setDateFormat(std::string_view pattern) {
  static PreparedOnce<Prepared, Prepared::Key> known;
  const auto& device = Device::current();
  _prepared = &known.get({pattern, device.localeIdentifier, device.timeZoneName});
}

std::optional<std::string> NSDateFormatter::stringFromDate(
    std::optional<std::chrono::sys_seconds> date) const {
  if (!date) return std::nullopt;
  if (!_prepared) return "";
  const auto shown = std::clamp(*date, earliest, latest);
  const auto sinceEpoch = shown.time_since_epoch() + _prepared->zone.secondsFromGMTForDate(shown);
  return _prepared->format->string(std::chrono::local_seconds(sinceEpoch));
}

}  // namespace quaverly
