#pragma once

#include <string_view>

namespace quaverly {

/// The threads of the process, as far as they are told apart.
class NSThread {
 public:
  /// Whether the caller is on the process's first thread, the one that runs the main loop.
  static bool isMainThread();

  /// Ends the process with a message when the caller is on another thread: what is done there would damage
  /// the screens.
  static void requireMainThread(std::string_view what);
};

}  // namespace quaverly
