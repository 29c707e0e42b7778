#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

#include "Platform/UIKit/UIView.h"

namespace quaverly::screens {

/// The view of that number that a person can reach: nothing hides it or takes its touches away. Main thread.
UIView* reachableView(uint64_t node);

template <class View>
Ref<View> reachable(uint64_t node) {
  return Ref<View>(dynamic_cast<View*>(reachableView(node)));
}

/// What the screen of a sheet's view is, or null: `View` is one whose `controller` the host acts on.
template <class View>
auto reachableController(uint64_t node) {
  const auto view = reachable<View>(node);
  auto* const controller = view ? view->controller() : nullptr;
  return Ref<std::remove_pointer_t<decltype(controller)>>(controller);
}

/// The value of a query's parameter, undecoded; "" without one.
std::string_view parameterIn(std::string_view query, std::string_view name);

/// The number that a query's parameter "node" names.
std::optional<uint64_t> nodeIn(std::string_view query);

}  // namespace quaverly::screens
