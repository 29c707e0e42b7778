#pragma once

#include <chrono>
#include <memory>
#include <string>

namespace quaverly {

/// A zone of the system's own zone database, independent of the process's zone. A value; any thread.
class NSTimeZone {
 public:
  /// By its name, for example "Europe/Berlin"; UTC when the database has no such zone.
  static NSTimeZone timeZoneWithName(const std::string& name);

  /// How far the zone's clocks are ahead of UTC at that instant, past or future.
  std::chrono::seconds secondsFromGMTForDate(std::chrono::sys_seconds date) const;

 private:
  class Rules;

  explicit NSTimeZone(std::shared_ptr<const Rules> rules);

  std::shared_ptr<const Rules> _rules;
};

}  // namespace quaverly
