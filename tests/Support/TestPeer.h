#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace quaverly::test {

/// An HTTP server on a free port of this machine that answers as a test wants: with exact bytes, cut short,
/// or never. One connection at a time, on a thread of its own.
class TestPeer {
 public:
  /// Gets the request's head, returns all bytes of the answer.
  using Answer = std::function<std::string(const std::string& head)>;
  enum class Afterwards { close, keepSilent };

  explicit TestPeer(Answer answer, Afterwards afterwards = Afterwards::close);
  ~TestPeer();

  std::string url(const std::string& pathAndQuery) const;
  unsigned requests() const { return _requests; }
  std::string lastHead() const;

  /// A complete answer with a body of that type and its length.
  static std::string ok(const std::string& body);

 private:
  void run();
  void serve(int connection);

  Answer _answer;
  Afterwards _afterwards;
  int _listener;
  uint16_t _port = 0;
  std::atomic<unsigned> _requests = 0;
  std::atomic<bool> _ends = false;
  mutable std::mutex _mutex;
  std::string _lastHead;
  std::thread _thread;
};

}  // namespace quaverly::test
