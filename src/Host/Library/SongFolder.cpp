#include "Host/Library/SongFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "Host/Library/FileDescriptor.h"
#include "Host/Library/SystemFailure.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::library {
namespace {

int flushFolder(const std::string& path) {
  const auto folder = FileDescriptor::openFolder(path);
  if (!folder) return errno;
  if (fsync(folder.get()) == 0) return 0;
  // Some file systems cannot flush a folder by itself, and need not.
  return errno == EINVAL || errno == EOPNOTSUPP ? 0 : errno;
}

}  // namespace

Result<SongFolder> SongFolder::make(const std::string& library, const std::string& artist,
                                    const std::string& album) {
  SongFolder folder;
  const std::string artistPath = library + "/" + artist;
  folder._path = artistPath + "/" + album;
  for (const auto& path : {artistPath, folder._path}) {
    if (auto failure = folder.makeOne(path)) return *failure;
  }
  return folder;
}

MaybeFailure SongFolder::makeOne(const std::string& path) {
  if (mkdir(path.c_str(), 0777) == 0) {
    _made.push_back(path);
    return std::nullopt;
  }
  struct stat attributes {};
  if (errno == EEXIST && stat(path.c_str(), &attributes) == 0) {
    if (S_ISDIR(attributes.st_mode)) return std::nullopt;
    errno = ENOTDIR;
  }
  return systemFailure("The folder " + path + " cannot be made", errno);
}

SongFolder::~SongFolder() {
  for (auto path = _made.rbegin(); path != _made.rend(); ++path) rmdir(path->c_str());
}

MaybeFailure SongFolder::flush() const {
  int error = flushFolder(_path);
  for (auto path = _made.rbegin(); path != _made.rend() && error == 0; ++path) {
    error = flushFolder(NSStringByDeletingLastPathComponent(*path));
  }
  if (error == 0) return std::nullopt;
  return systemFailure("The folder " + _path + " cannot be written", error);
}

}  // namespace quaverly::library
