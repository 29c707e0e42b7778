#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace quaverly {

/// The device's time: what o'clock it is, how much time has passed, and being called later.
/// Main thread only, except `date`.
class Clock {
 public:
  using Date = std::chrono::system_clock::time_point;
  using Instant = std::chrono::steady_clock::time_point;
  using Duration = std::chrono::steady_clock::duration;

  /// Destroying an alarm cancels it; its callback never runs afterwards.
  class Alarm {
   public:
    virtual ~Alarm() = default;
  };

  virtual ~Clock() = default;

  /// The calendar date and time. Any thread.
  virtual Date date() const = 0;

  /// Monotonic, unrelated to the calendar.
  virtual Instant now() const = 0;

  /// Calls `callback` once on the main thread when `delay` has passed, never from inside this call.
  [[nodiscard]] virtual std::unique_ptr<Alarm> after(Duration delay, std::function<void()> callback) = 0;
};

}  // namespace quaverly
