#include "Support/ChildProcess.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace quaverly::test {

ChildProcess::ChildProcess(const std::function<int()>& work) : _id(::fork()) {
  if (_id < 0) throw std::runtime_error("no child process");
  if (_id == 0) ::_exit(work());
}

ChildProcess::~ChildProcess() {
  if (exitStatus()) return;
  ::kill(_id, SIGKILL);
  ::waitpid(_id, nullptr, 0);
}

std::optional<int> ChildProcess::exitStatus() {
  int status = 0;
  if (!_status && ::waitpid(_id, &status, WNOHANG) == _id)
    _status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return _status;
}

Signal::Signal() {
  if (::pipe(_ends) != 0) throw std::runtime_error("no pipe");
}

Signal::~Signal() {
  ::close(_ends[0]);
  ::close(_ends[1]);
}

void Signal::give() {
  const char byte = 1;
  if (::write(_ends[1], &byte, 1) != 1) throw std::runtime_error("nobody waits");
}

void Signal::await() {
  char byte;
  if (::read(_ends[0], &byte, 1) != 1) throw std::runtime_error("nobody signals");
}

}  // namespace quaverly::test
