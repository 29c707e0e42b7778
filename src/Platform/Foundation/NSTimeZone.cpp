#include "Platform/Foundation/NSTimeZone.h"

#include <absl/time/time.h>

#include <utility>

namespace quaverly {

class NSTimeZone::Rules {
 public:
  explicit Rules(absl::TimeZone zone) : _zone(zone) {}

  std::chrono::seconds offsetAt(std::chrono::sys_seconds date) const {
    return std::chrono::seconds(_zone.At(absl::FromChrono(date)).offset);
  }

 private:
  absl::TimeZone _zone;
};

NSTimeZone::NSTimeZone(std::shared_ptr<const Rules> rules) : _rules(std::move(rules)) {}

NSTimeZone NSTimeZone::timeZoneWithName(const std::string& name) {
  absl::TimeZone zone;  // UTC, and stays so when loading fails
  absl::LoadTimeZone(name, &zone);
  return NSTimeZone(std::make_shared<Rules>(zone));
}

std::chrono::seconds NSTimeZone::secondsFromGMTForDate(std::chrono::sys_seconds date) const {
  return _rules->offsetAt(date);
}

}  // namespace quaverly
