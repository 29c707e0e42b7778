#include "Platform/Foundation/OpenFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace quaverly {
namespace {

/// What a thread opened last. The weak reference only tells whether it is still there: locking it would cost
/// more than the rest of a question.
struct LastOpened {
  std::weak_ptr<OpenFolder> kept;
  OpenFolder* folder = nullptr;
};

thread_local LastOpened lastOpened;

NSFileAttributes attributesFrom(const struct stat& status) {
  const std::chrono::seconds sinceEpoch(status.st_mtim.tv_sec);
  return {std::chrono::sys_seconds(sinceEpoch), static_cast<uint64_t>(status.st_size)};
}

/// One system call for everything but links, which need a second one for what they lead to.
FileLook lookAt(int folder, const char* name) {
  struct stat status;
  if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return {};
  FileLook look{.exists = true, .isDirectory = false, .attributes = attributesFrom(status)};
  if (S_ISLNK(status.st_mode)) look.exists = fstatat(folder, name, &status, 0) == 0;
  look.isDirectory = look.exists && S_ISDIR(status.st_mode);
  return look;
}

std::error_code lastError() {
  return {errno, std::generic_category()};
}

bool isDotOrDotDot(std::string_view name) {
  return name == "." || name == "..";
}

}  // namespace

FileLook lookAtHostPath(const std::string& hostPath) {
  return lookAt(AT_FDCWD, hostPath.c_str());
}

/// A directory stream with its descriptor.
class OpenFolder::Stream {
 public:
  explicit Stream(DIR* directory) : _directory(directory) {}
  ~Stream() { closedir(_directory); }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  static std::unique_ptr<Stream> open(const std::string& hostPath) {
    DIR* directory = opendir(hostPath.c_str());  // close-on-exec
    return directory ? std::make_unique<Stream>(directory) : nullptr;
  }

  DIR* directory() const { return _directory; }
  int descriptor() const { return dirfd(_directory); }

 private:
  DIR* _directory;
};

OpenFolder::~OpenFolder() = default;

std::shared_ptr<OpenFolder> OpenFolder::open(std::string_view path, const std::string& hostPath,
                                             std::vector<std::string> mountedNames, std::error_code& reason) {
  std::shared_ptr<OpenFolder> folder(new OpenFolder);
  folder->_stream = Stream::open(hostPath);
  reason = folder->_stream ? folder->readNames() : lastError();
  if (reason) return nullptr;
  folder->_prefix = path;
  if (!folder->_prefix.ends_with('/')) folder->_prefix += '/';
  folder->_mountedNames = std::move(mountedNames);
  lastOpened = {folder, folder.get()};
  return folder;
}

std::shared_ptr<OpenFolder> OpenFolder::onTheWay(const std::vector<std::string>& names) {
  std::shared_ptr<OpenFolder> folder(new OpenFolder);
  for (const auto& name : names) folder->addName(name);
  return folder;
}

std::error_code OpenFolder::readNames() {
  errno = 0;
  while (const dirent* entry = readdir(_stream->directory())) {
    const std::string_view name = entry->d_name;
    if (!isDotOrDotDot(name)) addName(name);
  }
  return lastError();
}

void OpenFolder::addName(std::string_view name) {
  _names.append(name).push_back('\0');
  ++_count;
}

OpenFolder* OpenFolder::holding(std::string_view path) {
  const bool isKept = !lastOpened.kept.expired();
  return isKept && lastOpened.folder->holds(path) ? lastOpened.folder : nullptr;
}

bool OpenFolder::holds(std::string_view path) const {
  if (!path.starts_with(_prefix)) return false;
  const auto name = path.substr(_prefix.size());
  const bool isName = !name.empty() && name.find('/') == std::string_view::npos && !isDotOrDotDot(name);
  return isName && std::ranges::find(_mountedNames, name) == _mountedNames.end();
}

const FileLook& OpenFolder::look(std::string_view path) {
  _lookedAt = path.substr(_prefix.size());
  _look = lookAt(_stream->descriptor(), _lookedAt.c_str());
  return _look;
}

std::optional<NSFileAttributes> OpenFolder::takeAttributes(std::string_view path) {
  if (path.substr(_prefix.size()) != _lookedAt) look(path);
  _lookedAt.clear();
  return _look.attributes;
}

}  // namespace quaverly
