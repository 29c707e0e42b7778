#include "Host/Screens/ReachableViews.h"

#include <algorithm>
#include <charconv>

#include "Platform/UIKit/UIApplication.h"

namespace quaverly::screens {
namespace {

UIView* reachableIn(UIView& view, uint64_t identity) {
  if (view.isHidden()) return nullptr;
  if (view.identity() == identity) return &view;
  for (const auto& subview : view.subviews()) {
    if (auto* const found = reachableIn(*subview, identity))
      return view.isUserInteractionEnabled() ? found : nullptr;
  }
  return nullptr;
}

}  // namespace

UIView* reachableView(uint64_t node) {
  auto* const window = UIApplication::sharedApplication().keyWindow();
  return window ? reachableIn(*window, node) : nullptr;
}

std::string_view parameterIn(std::string_view query, std::string_view name) {
  while (!query.empty()) {
    const size_t end = std::min(query.find('&'), query.size());
    const std::string_view parameter = query.substr(0, end);
    if (parameter.size() > name.size() && parameter.starts_with(name) && parameter[name.size()] == '=')
      return parameter.substr(name.size() + 1);
    query.remove_prefix(std::min(end + 1, query.size()));
  }
  return {};
}

std::optional<uint64_t> nodeIn(std::string_view query) {
  const std::string_view digits = parameterIn(query, "node");
  uint64_t node = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), node);
  const bool isNumber = result.ec == std::errc() && result.ptr == digits.data() + digits.size();
  return isNumber ? std::optional(node) : std::nullopt;
}

}  // namespace quaverly::screens
