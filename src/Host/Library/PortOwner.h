#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

namespace quaverly::library {

/// Who listens on a port of this machine.
struct PortOwner {
  pid_t process = 0;    ///< 0 when it cannot be told, as of another user's program
  std::string program;  ///< its name, such as "nginx"; empty when it cannot be told
};

/// The program that listens on an IPv4 or IPv6 TCP port; nothing when nobody does, as far as can be told.
std::optional<PortOwner> ownerOfPort(uint16_t port);

/// The name of this program, as others see it in `PortOwner`.
std::string nameOfThisProgram();

}  // namespace quaverly::library
