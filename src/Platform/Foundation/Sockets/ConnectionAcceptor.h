#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "Platform/Device/Clock.h"
#include "Platform/Foundation/Sockets/Descriptor.h"
#include "Platform/Foundation/Sockets/LaterTurn.h"

namespace quaverly {

/// Takes connections from a listening socket, one when asked. Only peers that the peer guard lets in count;
/// others are closed before a byte of theirs is read. Main thread only; gone, it calls nobody.
class ConnectionAcceptor {
 public:
  /// How long to wait before trying again when the system has no descriptor or memory left for a connection.
  static constexpr auto backOff = std::chrono::milliseconds(100);

  using Callback = std::function<void(std::shared_ptr<Descriptor> connection)>;

  explicit ConnectionAcceptor(std::shared_ptr<Descriptor> listener);
  ~ConnectionAcceptor();
  ConnectionAcceptor(const ConnectionAcceptor&) = delete;
  ConnectionAcceptor& operator=(const ConnectionAcceptor&) = delete;

  /// Calls `callback` once with the next connection, in a later turn.
  void acceptNext(Callback callback);

 private:
  void tryToAccept();
  void retryAfter(int error);

  std::shared_ptr<Descriptor> _listener;
  Callback _callback;
  LaterTurn _turn;
  std::unique_ptr<Clock::Alarm> _backOff;
};

}  // namespace quaverly
