#include "Host/Environment/BrowserStart.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <sstream>
#include <string_view>

extern char** environ;

namespace quaverly::host {
namespace {

std::string pageLeadingTo(const std::string& address) {
  return "<!doctype html>\n<meta charset=\"utf-8\">\n<title>Quaverly</title>\n"
         "<script>location.replace(\"" +
         address + "\")</script>\n<p><a rel=\"noreferrer\" href=\"" + address + "\">Go to Quaverly</a></p>\n";
}

bool writeForOwner(const std::string& file, std::string_view text) {
  unlink(file.c_str());
  const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (descriptor < 0) return false;
  const bool isWritten = write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  return close(descriptor) == 0 && isWritten;
}

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

/// The process, or 0 when it could not be started.
pid_t start(std::vector<std::string> command) {
  std::vector<char*> arguments;
  for (auto& argument : command) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  const StartConditions conditions;
  pid_t process = 0;
  const int error = posix_spawnp(&process, arguments.front(), &conditions.actions, &conditions.attributes,
                                 arguments.data(), environ);
  return error == 0 ? process : 0;
}

}  // namespace

std::vector<std::string> browserCommand(const Environment& environment, const std::string& file) {
  if (!environment("DISPLAY") && !environment("WAYLAND_DISPLAY")) return {};
  const auto browser = environment("BROWSER");
  if (!browser) return {"xdg-open", file};
  std::istringstream words(browser->substr(0, browser->find(':')));
  std::vector<std::string> command;
  bool isNamed = false;
  for (std::string word; words >> word;) {
    if (const size_t at = word.find("%s"); at != std::string::npos) {
      word.replace(at, 2, file);
      isNamed = true;
    }
    command.push_back(word);
  }
  if (command.empty()) return {"xdg-open", file};
  if (!isNamed) command.push_back(file);
  return command;
}

BrowserStart::BrowserStart(const std::string& folder, const std::string& address,
                           const Environment& environment)
    : _file(folder + "/open.html") {
  const auto command = browserCommand(environment, _file);
  if (!command.empty() && writeForOwner(_file, pageLeadingTo(address))) _process = start(command);
}

BrowserStart::~BrowserStart() {
  unlink(_file.c_str());
  if (_process > 0) waitpid(_process, nullptr, WNOHANG);
}

}  // namespace quaverly::host
