#pragma once

#include <functional>
#include <memory>

namespace quaverly {

/// A call in a later turn of the main loop; forgotten when this object goes. Main thread only.
class LaterTurn {
 public:
  /// Never calls from inside; a call that still waits is replaced.
  void call(std::function<void()> callback);
  void cancel() { _callback.reset(); }

 private:
  std::shared_ptr<std::function<void()>> _callback;
};

}  // namespace quaverly
