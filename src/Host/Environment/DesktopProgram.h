#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace quaverly::host {

/// Starts a program of the user's, found along PATH, as if from a shell of its own, and silent. Returns the
/// process, which whoever started it waits for some time, or 0 when it could not be started.
pid_t startDesktopProgram(std::vector<std::string> command);

}  // namespace quaverly::host
