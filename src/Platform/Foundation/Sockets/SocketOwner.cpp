#include "Platform/Foundation/Sockets/SocketOwner.h"

namespace quaverly {
namespace {

/// Whether the kernel's diagnosis knows TCP: it then knows at least our own end of the connection.
bool isDiagnosisAvailable(SocketEndpoint own, SocketEndpoint peer) {
  static bool isProven = false;
  SocketOwner ignored{};
  isProven = isProven || diagnoseSocket(peer, own, ignored) == SocketDiagnosis::found;
  return isProven;
}

}  // namespace

std::optional<SocketOwner> ownerOfSocket(SocketEndpoint own, SocketEndpoint peer) {
  SocketOwner owner{};
  switch (diagnoseSocket(own, peer, owner)) {
    case SocketDiagnosis::found:
      return owner;
    case SocketDiagnosis::notFound:
      if (isDiagnosisAvailable(own, peer)) return std::nullopt;
      break;
    case SocketDiagnosis::unavailable:
      break;
  }
  return findInSocketTables(own, peer);
}

}  // namespace quaverly
