#include "Host/Mail/Sendmail.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include "Platform/Foundation/NSString.h"

namespace quaverly::host {
namespace {

/// Closed at the end of its scope.
class Descriptor {
 public:
  explicit Descriptor(int number) : _number(number) {}
  ~Descriptor() {
    if (_number >= 0) close(_number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return _number; }

 private:
  int _number;
};

std::string failure(const char* what) {
  return std::string(what) + " (" + std::strerror(errno) + ").";
}

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    text.remove_prefix(static_cast<size_t>(count));
  }
  return lseek(descriptor, 0, SEEK_SET) == 0;
}

/// Starts the mailer with the mail as its input and nothing else of ours. Signals are as a program expects
/// them. Returns 0 or an `errno` value.
int start(const std::string& path, int input, int complaints, pid_t& process) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&files, complaints, STDERR_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t signals;
  sigfillset(&signals);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  std::array<std::string, 3> words = {path, "-t", "-i"};
  std::array<char*, 4> arguments = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  const int error = posix_spawn(&process, path.c_str(), &files, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  return error;
}

/// Waits for the mailer's end; whether it came in time.
bool endsWithin(pid_t process, std::chrono::milliseconds within, const std::stop_token& stop) {
  const Descriptor ended(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
  const Descriptor stopped(eventfd(0, EFD_CLOEXEC));
  const std::stop_callback wake(stop, [&] { eventfd_write(stopped.number(), 1); });
  std::array<pollfd, 2> waiting = {pollfd{ended.number(), POLLIN, 0}, pollfd{stopped.number(), POLLIN, 0}};
  while (poll(waiting.data(), waiting.size(), static_cast<int>(within.count())) < 0 && errno == EINTR)
    continue;
  return ended.number() < 0 || (waiting[0].revents & POLLIN) != 0;
}

/// What the mailer had to say, behind what is said of it: on one line.
std::string complaintsIn(int descriptor) {
  std::array<char, 400> text{};
  const ssize_t count = pread(descriptor, text.data(), text.size(), 0);
  std::string said =
      NSStringWithReplacements({text.data(), static_cast<size_t>(std::max<ssize_t>(count, 0))});
  std::ranges::replace_if(
      said, [](unsigned char c) { return c < ' '; }, ' ');
  while (said.ends_with(' ') || said.ends_with('.')) said.pop_back();
  return said.empty() ? "." : ": " + said + ".";
}

/// The mailer's outcome. One that takes too long is ended.
std::optional<std::string> await(pid_t process, std::chrono::milliseconds within, const std::stop_token& stop,
                                 int complaints) {
  const bool isLate = !endsWithin(process, within, stop);
  if (isLate) kill(process, SIGKILL);
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) continue;
  if (isLate) return "The mailer did not answer in time. The mail may not have been sent.";
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return std::nullopt;
  const std::string said = complaintsIn(complaints);
  if (!WIFEXITED(status)) return "The mailer broke off" + said;
  return "The mailer refused the mail (status " + std::to_string(WEXITSTATUS(status)) + ")" + said;
}

}  // namespace

std::optional<Sendmail> Sendmail::find(const std::string& searchPath) {
  const std::string folders = searchPath + ":/usr/sbin:/usr/lib:/usr/bin";
  for (size_t at = 0; at < folders.size();) {
    const size_t end = std::min(folders.find(':', at), folders.size());
    const std::string path = folders.substr(at, end - at) + "/sendmail";
    struct stat attributes {};
    // A relative folder would mean another program wherever this one is started.
    if (path.front() == '/' && stat(path.c_str(), &attributes) == 0 && S_ISREG(attributes.st_mode) &&
        access(path.c_str(), X_OK) == 0)
      return Sendmail(path);
    at = end + 1;
  }
  return std::nullopt;
}

std::optional<std::string> Sendmail::send(const std::string& mimeText, std::chrono::milliseconds within,
                                          const std::stop_token& stop) const {
  // A file rather than a pipe: a mailer that reads nothing holds nobody.
  const Descriptor mail(memfd_create("mail", MFD_CLOEXEC));
  if (mail.number() < 0 || !writeAll(mail.number(), mimeText))
    return failure("There is no room for the mail");
  const Descriptor complaints(memfd_create("complaints", MFD_CLOEXEC));
  pid_t process = 0;
  errno = start(_path, mail.number(), complaints.number(), process);
  if (errno != 0) return failure("The mailer cannot be started");
  return await(process, within, stop, complaints.number());
}

}  // namespace quaverly::host
