#pragma once

#include <functional>
#include <memory>

#include "Platform/Device/Clock.h"

namespace quaverly {

/// The main thread's loop. Everything but workers runs on it: screens, listing, the HTTP server,
/// notifications.
///
/// It is the process's only one and is made on first use. Whoever calls `run` is the main thread. A stopped
/// loop can be run again; destroying it at exit leaves nothing behind.
class NSRunLoop {
 public:
  static NSRunLoop& mainRunLoop();

  /// Runs `block` in a later turn of the loop, in the order of the calls. Any thread; never runs it inside
  /// the call.
  void performBlock(std::function<void()> block);

  /// Runs until `stop`.
  void run();
  /// Lets `run` return after the current turn. Any thread, signal handlers excepted.
  void stop();
  /// Runs what is ready and waits at most `limit` for something to become ready; for hosts that poll and for
  /// tests. Returns whether anything ran.
  bool runOnce(Clock::Duration limit = {});

  /// Real time, delivered by this loop.
  std::shared_ptr<Clock> clock();

  class Core;  // the event loop below, for the platform's own rooms
  Core& core() { return *_core; }

 private:
  NSRunLoop();
  ~NSRunLoop();

  std::unique_ptr<Core> _core;
};

}  // namespace quaverly
