#pragma once

#include <map>

#include "Platform/Device/Clock.h"

namespace quaverly::test {

/// Time that stands still until a test moves it. Alarms run in the order of their instants, from inside
/// `advance`.
class VirtualClock : public Clock {
 public:
  Date date() const override { return _date; }
  Instant now() const override { return _now; }
  std::unique_ptr<Alarm> after(Duration delay, std::function<void()> callback) override;

  void advance(Duration by);
  void setDate(Date date) { _date = date; }
  /// How many alarms wait.
  size_t alarms() const { return _alarms->size(); }

 private:
  using Key = std::pair<Instant, unsigned long>;
  using Alarms = std::map<Key, std::function<void()>>;
  class PendingAlarm;

  Date _date = Date(std::chrono::hours(24 * 365 * 50));
  Instant _now{};
  unsigned long _count = 0;
  std::shared_ptr<Alarms> _alarms = std::make_shared<Alarms>();
};

}  // namespace quaverly::test
