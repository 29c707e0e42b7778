#pragma once

#include <filesystem>
#include <string>

#include "Host/Environment/UserFolders.h"

// What the device is told about the machine itself and the user's session on it.
namespace quaverly::host {

/// What `uname` says of the machine, for example "x86_64".
std::string machineName();

/// Tells this machine from others, 40 hexadecimal digits: a hash that is made for this application from the
/// machine's own identity, which cannot be found out from it. Empty where the machine has none.
std::string deviceIdentity(const std::filesystem::path& machineId = "/etc/machine-id");

/// The D-Bus address of the session's bus: DBUS_SESSION_BUS_ADDRESS, or the socket that lies in
/// XDG_RUNTIME_DIR; empty without either.
std::string messageBusAddress(const Environment& environment);

}  // namespace quaverly::host
