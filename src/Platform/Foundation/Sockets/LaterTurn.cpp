#include "Platform/Foundation/Sockets/LaterTurn.h"

#include <utility>

#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly {

void LaterTurn::call(std::function<void()> callback) {
  _callback = std::make_shared<std::function<void()>>(std::move(callback));
  NSRunLoop::mainRunLoop().performBlock([weak = std::weak_ptr(_callback)] {
    if (const auto callback = weak.lock()) (*callback)();
  });
}

}  // namespace quaverly
