#pragma once

#include <csignal>
#include <functional>
#include <thread>

namespace quaverly::host {

/// Turns Ctrl-C and a polite kill (SIGINT, SIGTERM) into a call on the main thread. A second one ends the
/// process at once, as if killed. Made on the main thread before any other thread starts, so that all of them
/// leave the signals alone; from then on they do nothing else.
class InterruptWatch {
 public:
  explicit InterruptWatch(std::function<void()> onInterrupt);
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

 private:
  sigset_t _signals{};
  std::jthread _thread;
};

}  // namespace quaverly::host
