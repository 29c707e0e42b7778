#pragma once

#include <array>
#include <functional>
#include <memory>
#include <utility>

#include "Platform/Foundation/Sockets/LaterTurn.h"

namespace quaverly {

/// One open descriptor and its only owner, whichever wrappers share it: it is closed once, and nothing is
/// ever done to a descriptor that somebody else was given since. Main thread only.
class Descriptor {
 public:
  enum class Event { readable, writable };

  /// Takes an open descriptor over.
  explicit Descriptor(int number) : _number(number) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  /// -1 once it is closed.
  int number() const { return _number; }

  /// Gives the open descriptor to the caller; only while nobody has waited for it yet.
  [[nodiscard]] int release() { return std::exchange(_number, -1); }

  /// Closes it, and forgets whoever waits for it. Does nothing when that has happened already.
  void close();
  /// The same for a connection, whose peer sees it broken off; what was not sent yet is dropped.
  void reset();

  /// Calls `callback` once, in a later turn, when the descriptor is ready in that way or has failed. One
  /// waiter for each event: a later one takes the earlier one's place. A descriptor that the system cannot
  /// watch is closed; its waiter is called.
  void wait(Event event, std::function<void()> callback);
  /// Whoever waits for that event is not called.
  void forget(Event event);

 private:
  class Watch;

  int _number;
  std::shared_ptr<Watch> _watch;        // made when first waited for
  std::array<LaterTurn, 2> _unwatched;  // the waiters for a descriptor that cannot be watched, by event
};

}  // namespace quaverly
