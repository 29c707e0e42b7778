#pragma once

#include <chrono>
#include <memory>

#include "Platform/Device/Clock.h"
#include "Platform/Foundation/Sockets/Descriptor.h"
#include "Platform/Foundation/Sockets/LaterTurn.h"
#include "Platform/Foundation/Sockets/SocketWriter.h"

namespace quaverly {

/// The end of a connection that nobody holds any more. It sends what is still queued, ends its side, and
/// reads and throws away what the peer sends until the peer ends too: closing earlier would break the
/// connection off, and the peer could lose the last bytes. Main thread only.
class ClosingConnection {
 public:
  /// Once everything has arrived, a peer has about this long to end its side.
  static constexpr auto lingerLimit = std::chrono::seconds(5);

  /// Takes the connection over and closes it in its time. A broken one is closed at once.
  static void close(std::shared_ptr<Descriptor> descriptor, std::unique_ptr<SocketWriter> writer);

  ClosingConnection(std::shared_ptr<Descriptor> descriptor, std::unique_ptr<SocketWriter> writer);

 private:
  void begin();
  void endSending();
  void discardInput();
  void setAlarm();
  void checkPeer();
  void end();

  std::shared_ptr<Descriptor> _descriptor;
  std::unique_ptr<SocketWriter> _writer;  // null once everything is sent
  LaterTurn _turn;
  std::unique_ptr<Clock::Alarm> _alarm;
  int _unacknowledged = 0;
  Clock::Instant _lastProgress{};
  bool _hasPeerEnded = false;
};

}  // namespace quaverly
