#include "Platform/Foundation/CFSocket.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>
#include <optional>

#include "Platform/Foundation/Sockets/Descriptor.h"

namespace quaverly {
namespace {

/// What a connection holds of an answer at most. Connections inherit it. Larger ones move the bytes in flight
/// out of the processor's caches, smaller ones stall a single fast client.
constexpr int sendBufferSize = 192 * 1024;

std::optional<sockaddr_in> addressIn(const NSData& data) {
  const auto bytes = data.bytes();
  constexpr std::byte length{16};
  constexpr std::byte family{static_cast<int>(CFSocketFamily::inet)};
  if (bytes.size() != 16 || bytes[0] != length || bytes[1] != family) return std::nullopt;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  std::memcpy(&address.sin_port, &bytes[2], sizeof address.sin_port);
  std::memcpy(&address.sin_addr, &bytes[4], sizeof address.sin_addr);
  return address;
}

bool setWholeNumber(int descriptor, int level, int option, int value) {
  return ::setsockopt(descriptor, level, option, &value, sizeof value) == 0;
}

}  // namespace

CFSocket::~CFSocket() = default;

Ref<CFSocket> CFSocketCreate(CFSocketFamily, CFSocketType, CFSocketProtocol) {
  const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP);
  if (descriptor < 0) return nullptr;
  return make<CFSocket>(std::make_shared<Descriptor>(descriptor));
}

CFSocketNativeHandle CFSocketGetNative(const Ref<CFSocket>& socket) {
  return socket->native()->number() < 0 ? nullptr : socket->native();
}

int setsockopt(const CFSocketNativeHandle& socket, CFSocketOption option, int value) {
  switch (option) {
    case CFSocketOption::reuseAddress:
      return socket && setWholeNumber(socket->number(), SOL_SOCKET, SO_REUSEADDR, value) ? 0 : -1;
  }
  return -1;
}

CFSocketError CFSocketSetAddress(const Ref<CFSocket>& socket, const NSData& data) {
  const auto address = addressIn(data);
  const int descriptor = socket->native()->number();
  if (!address || ::bind(descriptor, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0) {
    return CFSocketError::error;
  }
  setWholeNumber(descriptor, SOL_SOCKET, SO_SNDBUF, sendBufferSize);
  return ::listen(descriptor, SOMAXCONN) == 0 ? CFSocketError::success : CFSocketError::error;
}

void CFSocketInvalidate(const Ref<CFSocket>& socket) {
  socket->native()->close();
}

}  // namespace quaverly
