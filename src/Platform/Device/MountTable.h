#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quaverly {

/// Which parts of the host's file system the device's paths reach. Nothing outside the mounts can be named.
///
/// A device path is made canonical first (`.`, `..` and doubled slashes, without looking at the disk),
/// "/private/var" reads as "/var", and the longest mounted prefix decides. Folders on the way to a mount
/// exist, read-only, and hold the way and nothing else. Symbolic links resolve as on the host. Paths are
/// bytes. Any thread.
class MountTable {
 public:
  enum class Access { readOnly, readWrite };

  struct Location {
    std::string hostPath;
    Access access;
  };

  MountTable() = default;
  MountTable(const MountTable& other);
  MountTable& operator=(const MountTable& other);

  /// Mounts a host folder, or a single host file, at a device path. A mount at the same path is replaced.
  void mount(std::string_view devicePath, std::string hostPath, Access access);
  void unmount(std::string_view devicePath);

  /// Where a device path lies on the host, whether or not something is there; nothing for a path outside the
  /// mounts and for a folder that is only on the way to one (`isOnTheWay`).
  std::optional<Location> resolve(std::string_view devicePath) const;

  /// Whether a device folder exists only because mounts lie below it.
  bool isOnTheWay(std::string_view devicePath) const;

  /// The names directly below a device folder that lead to a mount or are one, sorted, each once.
  std::vector<std::string> namesTowardsMounts(std::string_view devicePath) const;

  /// The device path of a host path that lies in a mounted folder, by the longest mounted host folder. Both
  /// are compared as written, so the caller resolves links first when it wants that.
  std::optional<std::string> devicePath(std::string_view hostPath) const;

  /// `path` made absolute and canonical, with "/private/var" read as "/var".
  static std::string canonical(std::string_view path);

 private:
  std::map<std::string, Location> mountsCopy() const;

  mutable std::mutex _mutex;
  std::map<std::string, Location> _mounts;  // by canonical device path
};

}  // namespace quaverly
