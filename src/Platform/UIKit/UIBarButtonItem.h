#pragma once

#include <optional>
#include <string>
#include <utility>

#include "Platform/Foundation/NSObject.h"
#include "Platform/UIKit/UITargetAction.h"

namespace quaverly {

/// A button in a navigation bar. Main thread only.
class UIBarButtonItem : public NSObject {
 public:
  UIBarButtonItem(std::optional<std::string> title, UITargetAction action)
      : _title(std::move(title)), _action(std::move(action)) {}

  const std::optional<std::string>& title() const { return _title; }
  void setTitle(std::optional<std::string> title) { _title = std::move(title); }

  /// What a tap does.
  void sendAction() const { _action.send(); }

 private:
  std::optional<std::string> _title;
  UITargetAction _action;
};

}  // namespace quaverly
