#pragma once

#include <nlohmann/json.hpp>
#include <string>

// The lines that instances exchange, as JSON objects.
namespace quaverly::instances {

using Json = nlohmann::ordered_json;

std::string lineOf(const Json& json);
/// An empty object when the line is none.
Json objectIn(const std::string& line);

/// The member of that name when it is a text; "" otherwise.
std::string text(const Json& json, const char* name);
/// The member of that name when it is a number; 0 otherwise.
template <class Number>
Number number(const Json& json, const char* name) {
  const auto found = json.find(name);
  return found != json.end() && found->is_number() ? found->get<Number>() : Number{};
}

}  // namespace quaverly::instances
