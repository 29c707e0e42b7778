#include "Platform/Foundation/NSDateFormatter.h"

#include <compare>
#include <memory>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/DateFormat.h"
#include "Platform/Foundation/NSTimeZone.h"
#include "Platform/Foundation/PreparedOnce.h"

namespace quaverly {

/// A pattern in a locale and a zone.
struct NSDateFormatter::Prepared {
  struct Key {
    std::string pattern;
    std::string locale;
    std::string zone;
    auto operator<=>(const Key&) const = default;
  };

  NSTimeZone zone;
  std::unique_ptr<const DateFormat> format;

  static const Prepared& with(const Key& key) {
    static PreparedOnce<Key, Prepared> known;
    return known.get(key, [](const Key& made) {
      return Prepared{NSTimeZone::timeZoneWithName(made.zone),
                      DateFormat::prepare(made.pattern, made.locale)};
    });
  }
};

void NSDateFormatter::setDateFormat(std::string_view pattern) {
  const auto& device = Device::current();
  _prepared = &Prepared::with({std::string(pattern), device.localeIdentifier, device.timeZoneName});
}

std::optional<std::string> NSDateFormatter::stringFromDate(
    std::optional<std::chrono::sys_seconds> date) const {
  if (!date) return std::nullopt;
  if (!_prepared) return "";
  const auto sinceEpoch = date->time_since_epoch() + _prepared->zone.secondsFromGMTForDate(*date);
  return _prepared->format->string(std::chrono::local_seconds(sinceEpoch));
}

}  // namespace quaverly
