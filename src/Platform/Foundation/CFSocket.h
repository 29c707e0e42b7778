#pragma once

#include <memory>

#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSObject.h"

namespace quaverly {

class Descriptor;

/// A socket as the calls below a wrapper know it. Shares the socket with its wrappers: whoever closes it
/// first closes it for all.
using CFSocketNativeHandle = std::shared_ptr<Descriptor>;

enum class CFSocketFamily { inet = 2 };
enum class CFSocketType { stream = 1 };
enum class CFSocketProtocol { tcp = 6 };
enum class CFSocketOption { reuseAddress };
enum class CFSocketError { success = 0, error = -1, timeout = -2 };

/// A listening socket.
class CFSocket : public NSObject {
 public:
  explicit CFSocket(CFSocketNativeHandle native) : _native(std::move(native)) {}

  const CFSocketNativeHandle& native() const { return _native; }

 protected:
  ~CFSocket() override;

 private:
  CFSocketNativeHandle _native;
};

/// A new socket without an address; null when there is none to be had.
[[nodiscard]] Ref<CFSocket> CFSocketCreate(CFSocketFamily family, CFSocketType type,
                                           CFSocketProtocol protocol);

/// Null for an invalidated socket.
CFSocketNativeHandle CFSocketGetNative(const Ref<CFSocket>& socket);

/// Sets a whole number as a socket's option; 0 when that succeeded.
[[nodiscard]] int setsockopt(const CFSocketNativeHandle& socket, CFSocketOption option, int value);

/// Binds the socket and lets it listen. The address is the platform's 16 bytes: length (16), family (2), port
/// and IPv4 address in network byte order, eight zeros.
[[nodiscard]] CFSocketError CFSocketSetAddress(const Ref<CFSocket>& socket, const NSData& address);

/// Closes the socket, for all who share it.
void CFSocketInvalidate(const Ref<CFSocket>& socket);

}  // namespace quaverly
