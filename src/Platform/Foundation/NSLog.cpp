#include "Platform/Foundation/NSLog.h"

#include <cstdio>

namespace quaverly {
namespace {

std::function<void(std::string_view line)>& sink() {
  static std::function<void(std::string_view line)> current;
  return current;
}

}  // namespace

void NSLog(std::string_view line) {
  if (sink()) return sink()(line);
  // One write per line, so that lines of two threads do not mix.
  const std::string text = std::string(line) + '\n';
  std::fwrite(text.data(), 1, text.size(), stderr);
}

void setLogSink(std::function<void(std::string_view line)> newSink) {
  sink() = std::move(newSink);
}

}  // namespace quaverly
