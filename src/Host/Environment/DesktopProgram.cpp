#include "Host/Environment/DesktopProgram.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>

extern char** environ;

namespace quaverly::host {
namespace {

/// How the program starts: as if from a shell of its own, and silent.
class StartConditions {
 public:
  StartConditions() {
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_init(&actions);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    sigset_t usual;
    sigemptyset(&usual);
    for (const int signal : {SIGPIPE, SIGINT, SIGTERM}) sigaddset(&usual, signal);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    }
  }
  ~StartConditions() {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }
  StartConditions(const StartConditions&) = delete;
  StartConditions& operator=(const StartConditions&) = delete;

  posix_spawnattr_t attributes{};
  posix_spawn_file_actions_t actions{};
};

}  // namespace

pid_t startDesktopProgram(std::vector<std::string> command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (auto& argument : command) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  const StartConditions conditions;
  pid_t process = 0;
  const int error = posix_spawnp(&process, arguments.front(), &conditions.actions, &conditions.attributes,
                                 arguments.data(), environ);
  return error == 0 ? process : 0;
}

}  // namespace quaverly::host
