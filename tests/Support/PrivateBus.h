#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace quaverly::test {

/// A program that runs beside the test and prints lines. It ends with this object.
class RunningProgram {
 public:
  explicit RunningProgram(const std::string& command);
  ~RunningProgram();
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  /// The next line; waits for it. Throws when the program has ended.
  std::string line();

 private:
  struct Close {
    void operator()(FILE* file) const;
  };
  std::unique_ptr<FILE, Close> _output;
  int _id;
};

/// A D-Bus session bus of the test's own, with D-Bus's own monitor listening to what goes to Quaverly's
/// add-on.
class PrivateBus {
 public:
  PrivateBus();

  const std::string& address() const { return _address; }

  /// What was sent to the add-on since the last call, each as "path interface member".
  std::vector<std::string> calls();

 private:
  RunningProgram _daemon;
  std::string _address;
  RunningProgram _monitor;
};

}  // namespace quaverly::test
