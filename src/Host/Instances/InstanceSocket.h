#pragma once

#include <memory>
#include <string>

#include "Host/Library/Result.h"
#include "Platform/Foundation/Sockets/Descriptor.h"

// The socket in the data folder, by which instances find the one that serves.
namespace quaverly::instances {

/// Listens on the folder's socket, in place of one that a dead instance has left. Only for who has the turn
/// to serve.
library::Result<std::shared_ptr<Descriptor>> listenIn(const std::string& dataFolder);
/// Takes the socket's name away.
void removeSocketIn(const std::string& dataFolder);

/// A connection to the instance that serves on the folder, which belongs to this user or to root; null when
/// there is none.
std::shared_ptr<Descriptor> connectIn(const std::string& dataFolder);

}  // namespace quaverly::instances
