#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <string>

#include "Platform/Foundation/Sockets/SocketOwner.h"

namespace quaverly {
namespace {

std::string hexadecimal(SocketEndpoint endpoint) {
  const int port = __builtin_bswap16(endpoint.port);
  char text[16];
  std::snprintf(text, sizeof text, "%08" PRIX32 ":%04X", endpoint.address, port);
  return text;
}

/// The owner in a line of the table, whose first columns are: number, local address, remote address, state,
/// queues, timer, retransmissions, user, time-out, inode.
std::optional<SocketOwner> ownerIn(const std::string& line) {
  SocketOwner owner{};
  const int count = std::sscanf(line.c_str(), "%*s %*s %*s %*s %*s %*s %*s %" SCNu32 " %*s %" SCNu64,
                                &owner.user, &owner.inode);
  return count == 2 ? std::optional(owner) : std::nullopt;
}

std::optional<SocketOwner> findIn(const char* table, const std::string& ends) {
  std::ifstream lines(table);
  for (std::string line; std::getline(lines, line);) {
    if (line.find(ends) != std::string::npos) return ownerIn(line);
  }
  return std::nullopt;
}

}  // namespace

std::optional<SocketOwner> findInSocketTables(SocketEndpoint own, SocketEndpoint peer) {
  const auto from = hexadecimal(own);
  const auto to = hexadecimal(peer);
  if (const auto owner = findIn("/proc/net/tcp", ' ' + from + ' ' + to + ' ')) return owner;
  // A program may have connected by an IPv6 socket: its addresses then carry ours at their end.
  const std::string mapped = " 0000000000000000FFFF0000";
  return findIn("/proc/net/tcp6", mapped + from + mapped + to + ' ');
}

}  // namespace quaverly
