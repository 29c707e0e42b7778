#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "Host/Library/Result.h"

namespace quaverly::library {

/// A host file that has a device path of its own, read-only and without its neighbours. The path leads to it
/// while this object lives.
class OutsideFile {
 public:
  OutsideFile(std::string devicePath, std::string hostPath);
  ~OutsideFile();
  OutsideFile(const OutsideFile&) = delete;
  OutsideFile& operator=(const OutsideFile&) = delete;

  const std::string& devicePath() const { return _devicePath; }
  const std::string& hostPath() const { return _hostPath; }

 private:
  std::string _devicePath;
  std::string _hostPath;
};

/// Gives device paths to files that no mount reaches: /var/mobile/Import/N/NAME. Any thread.
class OutsideFiles {
 public:
  /// Mounts a host file, given by its absolute path, under a number of its own. Two calls for one path make
  /// two device paths. Fails for a name that is not UTF-8, which no device path can carry.
  Result<std::shared_ptr<const OutsideFile>> mount(const std::string& hostPath);

  /// The living file at a device path, or null.
  std::shared_ptr<const OutsideFile> mounted(const std::string& devicePath) const;

 private:
  mutable std::mutex _mutex;
  unsigned long _lastNumber = 0;
  std::map<std::string, std::weak_ptr<const OutsideFile>> _files;  // by device path
};

/// The device path that leads to a host path through the mounts as they are, or nothing: then the file lies
/// outside. Links in the path's folders are followed, the file's own is not.
std::optional<std::string> mountedDevicePath(const std::string& hostPath);

}  // namespace quaverly::library
