#include "Host/Library/DataLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <utility>

#include "Host/Environment/DataFolder.h"
#include "Host/Library/SystemFailure.h"

namespace quaverly::library {

const char* const anotherHasTheTurn = "Another import is running. This one goes on when it is done.";

Result<std::optional<DataLock>> DataLock::tryTake(const std::string& dataFolder, Turn turn) {
  static_cast<void>(host::makeDataFolder(dataFolder));  // what fails here shows below
  const std::string path = dataFolder + (turn == Turn::filing ? "/lock" : "/serving.lock");
  FileDescriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!file) return systemFailure("The data folder " + dataFolder + " cannot be used", errno);
  if (flock(file.get(), LOCK_EX | LOCK_NB) == 0) return std::optional(DataLock(std::move(file)));
  if (errno == EWOULDBLOCK || errno == EINTR) return std::optional<DataLock>();
  return systemFailure("The data folder " + dataFolder + " cannot be used", errno);
}

}  // namespace quaverly::library
