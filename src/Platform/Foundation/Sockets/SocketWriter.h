#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "Platform/Device/Clock.h"
#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/Sockets/Descriptor.h"
#include "Platform/Foundation/Sockets/LaterTurn.h"
#include "Platform/Foundation/Sockets/SendQueue.h"

namespace quaverly {

/// The outgoing half of a connection. Never blocks: what the connection does not take at once waits in a
/// queue. Main thread only; gone, it calls nobody and sends nothing more.
class SocketWriter {
 public:
  /// A peer that takes nothing for this long is given up.
  static constexpr auto stallLimit = std::chrono::minutes(1);
  /// What one connection sends in one turn of the loop at most.
  static constexpr uint64_t allowancePerTurn = 1024 * 1024;

  enum class State {
    sending,   ///< some of it still waits
    drained,   ///< everything has gone out
    cutShort,  ///< a file did not have the bytes that it once had: nothing goes out after what did
    broken     ///< the peer is gone, or was given up
  };

  explicit SocketWriter(std::shared_ptr<Descriptor> descriptor);
  ~SocketWriter();
  SocketWriter(const SocketWriter&) = delete;
  SocketWriter& operator=(const SocketWriter&) = delete;

  State state() const { return _state; }

  /// Sends, or queues, all of `data`. False when nothing more can be sent. What is written in one turn goes
  /// out in as few packets as it fits in.
  [[nodiscard]] bool write(const NSData& data);

  /// Calls `callback` once, in a later turn, when the state is another than `sending`.
  void whenSettled(std::function<void()> callback);

 private:
  void send();
  void settle(State state);
  void waitForRoom();
  void setStallAlarm(Clock::Duration delay);
  void checkForStall();
  void cork();
  void uncork();

  std::shared_ptr<Descriptor> _descriptor;
  SendQueue _queue;
  State _state = State::drained;
  std::function<void()> _whenSettled;
  LaterTurn _turn;
  std::unique_ptr<Clock::Alarm> _stallAlarm;  // while the connection is full
  Clock::Instant _lastProgress{};
  bool _isCorked = false;
};

}  // namespace quaverly
