#pragma once

#include <chrono>
#include <memory>
#include <string>

namespace quaverly {

/// A D-Bus method call without arguments that wants no reply.
struct OneWayCall {
  std::string bus;  ///< the address of the bus
  std::string destination;
  std::string object;
  std::string interface;
  std::string method;
};

/// Sends calls in the background, one after the other. A bus that is not there, refuses, or accepts and then
/// stays silent costs the call and nothing else: nobody waits, and nobody is told.
class MessageSender {
 public:
  /// How long a call may take from when it was given to when it is out. Later it is dropped.
  static constexpr std::chrono::seconds limit{2};

  MessageSender();
  /// Leaves behind what is not out, and the thread that tries.
  ~MessageSender();
  MessageSender(const MessageSender&) = delete;
  MessageSender& operator=(const MessageSender&) = delete;

  void send(OneWayCall call);
  /// Returns when all calls are out or dropped, and so within the limit.
  void finish();

 private:
  struct State;
  std::shared_ptr<State> _state;
};

}  // namespace quaverly
