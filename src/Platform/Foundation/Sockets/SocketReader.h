#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "Platform/Device/Clock.h"
#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/Sockets/Descriptor.h"
#include "Platform/Foundation/Sockets/LaterTurn.h"

namespace quaverly {

/// The incoming half of a connection. Main thread only; gone, it calls nobody.
class SocketReader {
 public:
  /// From `deadline` on the connection reads as ended, whatever comes: bytes that trickle in do not put it
  /// off.
  SocketReader(std::shared_ptr<Descriptor> descriptor, std::optional<Clock::Instant> deadline);
  ~SocketReader();
  SocketReader(const SocketReader&) = delete;
  SocketReader& operator=(const SocketReader&) = delete;

  /// Calls `callback` once, in a later turn, when there are bytes or the connection has ended.
  void whenAvailable(std::function<void()> callback);

  /// What is there, without waiting; empty when the connection has ended.
  NSData availableData();

 private:
  void tryToRead();
  void read();
  void end();
  void tell();

  std::shared_ptr<Descriptor> _descriptor;
  std::optional<Clock::Instant> _deadline;
  std::unique_ptr<Clock::Alarm> _deadlineAlarm;  // set when first waited for
  std::function<void()> _callback;
  LaterTurn _turn;
  NSData _ahead;  // read, and not asked for yet
  bool _hasEnded = false;
};

}  // namespace quaverly
