#include "Platform/Foundation/NSTimeZone.h"

#include <absl/time/time.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace quaverly {
namespace {

using std::chrono::seconds;
using std::chrono::sys_seconds;

// What files of our time are dated: their offsets come from a table that is made with the zone.
constexpr sys_seconds firstListed = std::chrono::sys_days(std::chrono::year(1970) / 1 / 1);
constexpr sys_seconds endOfListed = std::chrono::sys_days(std::chrono::year(2070) / 1 / 1);

absl::Time instant(sys_seconds date) {
  return absl::FromUnixSeconds(date.time_since_epoch().count());
}

}  // namespace

class NSTimeZone::Rules {
 public:
  explicit Rules(absl::TimeZone zone) : _zone(zone) {
    auto offset = zoneOffsetAt(firstListed);
    auto since = firstListed;
    absl::TimeZone::CivilTransition change;
    while (since < endOfListed) {
      _periods.push_back({since, offset});
      if (!_zone.NextTransition(instant(since), &change)) break;
      // Both as clocks showed them: the end of the old period, the beginning of the new one.
      since = sys_seconds(seconds(absl::ToUnixSeconds(absl::FromCivil(change.from, absl::UTCTimeZone())))) -
              offset;
      offset += seconds(change.to - change.from);
    }
  }

  seconds offsetAt(sys_seconds date) const {
    if (date < firstListed || date >= endOfListed) return zoneOffsetAt(date);
    const auto next = std::ranges::upper_bound(_periods, date, {}, &Period::since);
    return std::prev(next)->offset;
  }

 private:
  struct Period {
    sys_seconds since;
    seconds offset;
  };

  seconds zoneOffsetAt(sys_seconds date) const { return seconds(_zone.At(instant(date)).offset); }

  absl::TimeZone _zone;
  std::vector<Period> _periods;  // in order, without gaps
};

NSTimeZone::NSTimeZone(std::shared_ptr<const Rules> rules) : _rules(std::move(rules)) {}

NSTimeZone NSTimeZone::timeZoneWithName(const std::string& name) {
  absl::TimeZone zone;  // UTC, and stays so when loading fails
  absl::LoadTimeZone(name, &zone);
  return NSTimeZone(std::make_shared<Rules>(zone));
}

seconds NSTimeZone::secondsFromGMTForDate(sys_seconds date) const {
  return _rules->offsetAt(date);
}

}  // namespace quaverly
