#include "Platform/Foundation/Sockets/PeerGuard.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <optional>

#include "Platform/Foundation/Sockets/LocalAddresses.h"
#include "Platform/Foundation/Sockets/SocketOwner.h"

namespace quaverly {
namespace {

constexpr uid_t root = 0;

/// One end of a connection, asked for by `getsockname` or `getpeername`.
std::optional<SocketEndpoint> endpoint(int connection, int (*ask)(int, sockaddr*, socklen_t*)) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (ask(connection, reinterpret_cast<sockaddr*>(&address), &size) != 0) return std::nullopt;
  if (address.sin_family != AF_INET) return std::nullopt;
  return SocketEndpoint{address.sin_addr.s_addr, address.sin_port};
}

bool isTrusted(uid_t user) {
  return user == ::geteuid() || user == root;
}

/// Who made the other end of a local socket; nothing for another kind of socket.
std::optional<uid_t> userOfLocalPeer(int connection) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (::getsockname(connection, reinterpret_cast<sockaddr*>(&address), &size) != 0) return std::nullopt;
  if (address.ss_family != AF_UNIX) return std::nullopt;
  ucred peer{};
  size = sizeof peer;
  if (::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return std::nullopt;
  return peer.uid;
}

}  // namespace

bool isPeerThisUser(const Descriptor& connection) {
  if (const auto user = userOfLocalPeer(connection.number())) return isTrusted(*user);
  const auto peer = endpoint(connection.number(), ::getpeername);
  const auto own = endpoint(connection.number(), ::getsockname);
  if (!peer || !own || !isAddressOfThisMachine(peer->address)) return false;
  // Asked from the other side: the peer's own end is where its connection to us begins.
  const auto owner = ownerOfSocket(*peer, *own);
  return owner && owner->inode != 0 && isTrusted(owner->user);
}

}  // namespace quaverly
