#pragma once

#include <concepts>
#include <functional>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

/// An operation to run on a target that is not owned. Main thread only.
class UITargetAction {
 public:
  template <std::derived_from<NSObject> Target>
  UITargetAction(Target* target, void (Target::*action)())
      : _send([target = Unowned<Target>(target), action] {
          if (const Ref<Target> kept(target.get()); kept) (kept.get()->*action)();
        }) {}

  /// Runs the action and keeps the target alive meanwhile. Does nothing once the target is gone.
  void send() const { _send(); }

 private:
  std::function<void()> _send;
};

}  // namespace quaverly
