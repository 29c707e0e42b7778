#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace quaverly {

/// Writes one line to the platform's log. Any thread.
void NSLog(std::string_view line);

/// Where log lines go; standard error when none was set. Set before workers start.
void setLogSink(std::function<void(std::string_view line)> sink);

}  // namespace quaverly
