#pragma once

#include <cstdint>
#include <optional>

namespace quaverly {

/// An IPv4 address and a port, both in network byte order.
struct SocketEndpoint {
  uint32_t address;
  uint16_t port;
};

/// Whose a socket is. One that its program has already closed has no inode, and no user that could be relied
/// upon.
struct SocketOwner {
  uint32_t user;
  uint64_t inode;
};

/// Who on this machine has the TCP connection from `own` to `peer`, as the kernel tells; nothing when nobody
/// has. Main thread only.
std::optional<SocketOwner> ownerOfSocket(SocketEndpoint own, SocketEndpoint peer);

// The two ways to ask.

enum class SocketDiagnosis { found, notFound, unavailable };
/// Asks the kernel's socket diagnosis for this one connection. `owner` is set when it is found. The kernel
/// says "not found" also when it was built without the diagnosis of TCP.
SocketDiagnosis diagnoseSocket(SocketEndpoint own, SocketEndpoint peer, SocketOwner& owner);

/// Looks the connection up in the kernel's tables of all TCP connections: slow where there are many.
std::optional<SocketOwner> findInSocketTables(SocketEndpoint own, SocketEndpoint peer);

}  // namespace quaverly
