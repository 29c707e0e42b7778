#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>

namespace quaverly::test {

/// A copy of this process that does one thing and ends. Start it before the main loop exists: the loop does
/// not survive the copying.
class ChildProcess {
 public:
  /// `work` runs in the child; what it returns is the child's exit status.
  explicit ChildProcess(const std::function<int()>& work);
  /// Ends the child if it still runs.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t id() const { return _id; }

  /// The exit status, when the child has ended; -1 when a signal ended it.
  std::optional<int> exitStatus();

 private:
  pid_t _id;
  std::optional<int> _status;
};

/// Lets two processes wait for each other.
class Signal {
 public:
  Signal();
  ~Signal();
  Signal(const Signal&) = delete;
  Signal& operator=(const Signal&) = delete;

  void give();
  /// Returns when it was given, or when nobody is left who could give it.
  void await();

 private:
  int _ends[2];
};

}  // namespace quaverly::test
