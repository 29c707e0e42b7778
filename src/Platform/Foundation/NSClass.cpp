#include "Platform/Foundation/NSClass.h"

#include <map>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSFramework.h"

namespace quaverly {
namespace {

std::map<std::string_view, const NSClass*, std::less<>>& classes() {
  static std::map<std::string_view, const NSClass*, std::less<>> byName;
  return byName;
}

}  // namespace

NSClass::NSClass(std::string_view name, std::string_view framework) : _name(name), _framework(framework) {
  classes().insert_or_assign(name, this);
}

const NSClass* NSClassFromString(std::string_view name) {
  const auto found = classes().find(name);
  if (found == classes().end() || Device::current().absentClasses.contains(name)) return nullptr;
  const auto framework = found->second->framework();
  return framework.empty() || isFrameworkLoaded(framework) ? found->second : nullptr;
}

}  // namespace quaverly
