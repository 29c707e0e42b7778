#include "Support/NetworkNamespace.h"

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>

namespace quaverly::test {
namespace {

/// Without privileges a network of one's own needs a user namespace, in which this user stays who they are.
bool unshareAsUser() {
  const auto user = std::to_string(::geteuid());
  const auto group = std::to_string(::getegid());
  if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return false;
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << user << ' ' << user << " 1";
  std::ofstream("/proc/self/gid_map") << group << ' ' << group << " 1";
  return true;
}

bool bringLoopbackUp() {
  const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ifreq request{};
  std::strncpy(request.ifr_name, "lo", sizeof request.ifr_name - 1);
  request.ifr_flags = IFF_UP;
  const bool isUp = ::ioctl(socket, SIOCSIFFLAGS, &request) == 0;
  ::close(socket);
  return isUp;
}

}  // namespace

void enterOwnNetwork() {
  if (::unshare(CLONE_NEWNET) != 0 && !unshareAsUser()) throw std::runtime_error("no network namespace");
  if (!bringLoopbackUp()) throw std::runtime_error("no loopback interface");
}

}  // namespace quaverly::test
