#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quaverly::test {

/// Runs the main loop until `condition` holds; false when it does not within `limit` of real time.
bool runLoopUntil(const std::function<bool()>& condition,
                  std::chrono::milliseconds limit = std::chrono::seconds(10));

/// Runs what is ready, until nothing is.
void settleLoop();

/// A plain TCP client of a server that runs on this process's own main loop.
class SocketClient {
 public:
  static constexpr const char* loopback = "127.0.0.1";

  /// Connects; throws when nobody listens.
  explicit SocketClient(const char* address = loopback, int port = 8080);
  ~SocketClient();
  SocketClient(SocketClient&& other) noexcept;
  SocketClient(const SocketClient&) = delete;
  SocketClient& operator=(const SocketClient&) = delete;

  int descriptor() const { return _descriptor; }

  /// Sends all of it while the loop runs; false when the server is gone.
  bool send(std::string_view bytes);
  /// What has arrived by now, without running the loop.
  std::string received();
  /// Everything up to the server's end of the connection, while the loop runs; nothing when the connection
  /// breaks off, or does not end within a few seconds.
  std::optional<std::string> receiveToEnd();
  bool hasEnded() const { return _state == State::ended; }
  bool isBroken() const { return _state == State::broken; }

  /// Ends this side, as a client does that has nothing more to say.
  void finishSending();
  void close();
  /// Breaks the connection off.
  void reset();

 private:
  enum class State { open, ended, broken };

  int _descriptor;
  State _state = State::open;
};

}  // namespace quaverly::test
