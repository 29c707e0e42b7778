#include "Platform/Foundation/NSFramework.h"

#include <map>
#include <string>

#include "Platform/Device/Device.h"

namespace quaverly {
namespace {

std::map<std::string, int, std::less<>>& loadCounts() {
  static std::map<std::string, int, std::less<>> counts;
  return counts;
}

}  // namespace

bool loadFramework(std::string_view path) {
  if (Device::current().absentFrameworks.contains(path)) return false;
  ++loadCounts()[std::string(path)];
  return true;
}

void unloadFramework(std::string_view path) {
  const auto found = loadCounts().find(path);
  if (found != loadCounts().end() && --found->second == 0) loadCounts().erase(found);
}

bool isFrameworkLoaded(std::string_view path) {
  return loadCounts().contains(path);
}

}  // namespace quaverly
