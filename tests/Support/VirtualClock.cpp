#include "Support/VirtualClock.h"

#include <utility>

namespace quaverly::test {

class VirtualClock::PendingAlarm : public Clock::Alarm {
 public:
  PendingAlarm(std::shared_ptr<Alarms> alarms, Key key) : _alarms(std::move(alarms)), _key(key) {}
  ~PendingAlarm() override { _alarms->erase(_key); }

 private:
  std::shared_ptr<Alarms> _alarms;
  Key _key;
};

std::unique_ptr<Clock::Alarm> VirtualClock::after(Duration delay, std::function<void()> callback) {
  const Key key{_now + delay, _count++};
  _alarms->emplace(key, std::move(callback));
  return std::make_unique<PendingAlarm>(_alarms, key);
}

void VirtualClock::advance(Duration by) {
  const Instant end = _now + by;
  while (!_alarms->empty() && _alarms->begin()->first.first <= end) {
    auto due = _alarms->extract(_alarms->begin());
    _date += std::chrono::duration_cast<Date::duration>(due.key().first - _now);
    _now = due.key().first;
    due.mapped()();
  }
  _date += std::chrono::duration_cast<Date::duration>(end - _now);
  _now = end;
}

}  // namespace quaverly::test
