#include "Host/Library/Renaming.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "Host/Library/FileDescriptor.h"

namespace quaverly::library {
namespace {

bool isUnsupported(int error) {
  return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM;
}

/// A second name for the file, then the first one goes.
int moveByLink(const std::string& from, const std::string& to) {
  if (link(from.c_str(), to.c_str()) != 0) return errno;
  unlink(from.c_str());
  return 0;
}

/// Waits for the turn, which whoever holds the result has. Its file goes like any abandoned part file, so it
/// counts only while its name leads to it.
FileDescriptor turnIn(const std::string& folder) {
  for (;;) {
    FileDescriptor turn(open((folder + "/turn.part").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    struct stat attributes {};
    if (!turn || flock(turn.get(), LOCK_EX) != 0) return turn;
    if (fstat(turn.get(), &attributes) != 0 || attributes.st_nlink > 0) return turn;
  }
}

int moveInTurn(const std::string& from, const std::string& to, const std::string& turnsFolder) {
  const auto turn = turnIn(turnsFolder);
  struct stat attributes {};
  if (lstat(to.c_str(), &attributes) == 0) return EEXIST;
  if (errno != ENOENT) return errno;
  return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

}  // namespace

int renameWithoutReplacing(const std::string& from, const std::string& to, const std::string& turnsFolder) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (!isUnsupported(errno)) return errno;
  const int error = moveByLink(from, to);
  return isUnsupported(error) ? moveInTurn(from, to, turnsFolder) : error;
}

}  // namespace quaverly::library
