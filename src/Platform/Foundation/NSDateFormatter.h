#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace quaverly {

/// Writes dates in the device's locale and time zone.
///
/// A formatter is cheap to make: it is a handle on shared formatting that was prepared when its pattern was
/// first used. Any thread.
class NSDateFormatter {
 public:
  /// A date pattern as the Unicode locale data defines them, for example "dd/MM/yyyy h:mm a". Takes the
  /// locale and the zone that the device has at this moment.
  void setDateFormat(std::string_view pattern);

  /// Nothing for no date; empty when no pattern was set.
  std::optional<std::string> stringFromDate(std::optional<std::chrono::sys_seconds> date) const;

 private:
  struct Prepared;

  const Prepared* _prepared = nullptr;
};

}  // namespace quaverly
