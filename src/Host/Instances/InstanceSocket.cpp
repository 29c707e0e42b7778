#include "Host/Instances/InstanceSocket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Host/Library/FileDescriptor.h"
#include "Host/Library/SystemFailure.h"
#include "Platform/Foundation/Sockets/PeerGuard.h"

namespace quaverly::instances {
namespace {

using library::FileDescriptor;
using Act = int (*)(int, const sockaddr*, socklen_t);

constexpr const char* socketName = "/serving.socket";
constexpr int backlog = 16;

/// Binds or connects to the folder's socket. By way of the open folder: the kernel takes short paths only.
int atSocketIn(const std::string& dataFolder, int socket, Act act) {
  const auto folder = FileDescriptor::openFolder(dataFolder);
  if (!folder) return -1;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = "/proc/self/fd/" + std::to_string(folder.get()) + socketName;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return act(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

std::shared_ptr<Descriptor> makeSocket() {
  return std::make_shared<Descriptor>(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

}  // namespace

library::Result<std::shared_ptr<Descriptor>> listenIn(const std::string& dataFolder) {
  auto listener = makeSocket();
  removeSocketIn(dataFolder);
  if (atSocketIn(dataFolder, listener->number(), ::bind) != 0 || ::listen(listener->number(), backlog) != 0) {
    return library::systemFailure("No socket can be made in the data folder " + dataFolder, errno);
  }
  return listener;
}

void removeSocketIn(const std::string& dataFolder) {
  ::unlink((dataFolder + socketName).c_str());
}

std::shared_ptr<Descriptor> connectIn(const std::string& dataFolder) {
  auto connection = makeSocket();
  if (atSocketIn(dataFolder, connection->number(), ::connect) != 0) return nullptr;
  return isPeerThisUser(*connection) ? connection : nullptr;
}

}  // namespace quaverly::instances
