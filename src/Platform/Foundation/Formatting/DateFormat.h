#pragma once

#include <chrono>
#include <memory>
#include <string>

namespace quaverly {

/// A date pattern in a locale, prepared for formatting many dates. Any thread.
class DateFormat {
 public:
  virtual ~DateFormat() = default;

  virtual std::string string(std::chrono::local_seconds date) const = 0;

  /// ICU formats everything; what is common in listings is written without it, many times as fast.
  static std::unique_ptr<const DateFormat> prepare(const std::string& pattern, const std::string& locale);
};

}  // namespace quaverly
