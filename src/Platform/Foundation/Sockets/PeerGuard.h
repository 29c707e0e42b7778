#pragma once

#include "Platform/Foundation/Sockets/Descriptor.h"

namespace quaverly {

/// Whether the other end of an accepted connection is a program of this user's, or of root's, on this
/// machine: its address is one of this machine's, and the kernel knows its socket as theirs. A program that
/// has closed its socket already is nobody's. A local socket's other end is who connected, or who listens.
bool isPeerThisUser(const Descriptor& connection);

}  // namespace quaverly
