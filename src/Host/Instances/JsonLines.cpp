#include "Host/Instances/JsonLines.h"

namespace quaverly::instances {

std::string lineOf(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json objectIn(const std::string& line) {
  auto json = Json::parse(line, nullptr, false);
  return json.is_object() ? json : Json::object();
}

std::string text(const Json& json, const char* name) {
  const auto found = json.find(name);
  return found != json.end() && found->is_string() ? found->get<std::string>() : "";
}

}  // namespace quaverly::instances
