#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/CFNetwork/CFHTTPMessage.h"

namespace quaverly {

/// What the head of a request says.
struct RequestHead {
  std::string method;
  std::string target;  // as it was written
  HTTPHeaderFields fields;
};

/// Parses a whole head, the empty line at its end included; nothing when it is malformed.
std::optional<RequestHead> parseRequestHead(std::string_view head);

/// The standard description of a status code, such as "Not Implemented".
std::string standardStatusDescription(int statusCode);

}  // namespace quaverly
