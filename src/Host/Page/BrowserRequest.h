#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Host/Page/PageGuard.h"
#include "Host/Page/PageRoutes.h"

namespace quaverly::page {

/// The head of a request, as a browser sent it.
struct BrowserRequest {
  std::string method;
  std::string target;
  std::vector<std::pair<std::string, std::string>> fields;

  /// The value of a field that may stand there once; one that stands there more often is "?", which nobody
  /// expects.
  std::optional<std::string> field(std::string_view name) const;
  bool wantsWebSocket() const { return field("Upgrade").has_value(); }
  /// The head as text again, up to and with the empty line.
  std::string text() const;
};

/// What the guard wants to know.
RequestFacts factsOf(const BrowserRequest& request);

/// What is asked of the routes, still without its body; or the answer to what none of them takes.
std::variant<PageRequest, PageAnswer> routedRequest(const BrowserRequest& request, const PageRoutes& routes);

}  // namespace quaverly::page
