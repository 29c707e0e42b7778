#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "Platform/Foundation/NSFileAttributes.h"

namespace quaverly {

/// What one look at an item tells.
struct FileLook {
  bool exists = false;                         ///< what the path leads to, through links
  bool isDirectory = false;                    ///< likewise
  std::optional<NSFileAttributes> attributes;  ///< of the item itself
};

/// Looks at an item of the host.
FileLook lookAtHostPath(const std::string& hostPath);

/// A folder whose entries were read once, kept open so that looking at one of them needs no path.
///
/// Each thread remembers the folder that it opened last, as long as somebody keeps it. A folder belongs to
/// the thread that opened it.
class OpenFolder {
 public:
  /// Reads a folder of the host that is known as `path`. Null, with the reason, when it cannot be read.
  static std::shared_ptr<OpenFolder> open(std::string_view path, const std::string& hostPath,
                                          std::vector<std::string> mountedNames, std::error_code& reason);
  /// A folder that exists only because mounts lie below it.
  static std::shared_ptr<OpenFolder> onTheWay(const std::vector<std::string>& names);

  ~OpenFolder();
  OpenFolder(const OpenFolder&) = delete;
  OpenFolder& operator=(const OpenFolder&) = delete;

  /// The names, each ended by a NUL.
  const std::string& names() const { return _names; }
  size_t count() const { return _count; }

  /// This thread's last folder, when it is still kept and `path` names one of its entries. Kept by others:
  /// ask again rather than hold on to it.
  static OpenFolder* holding(std::string_view path);

  /// Looks at the entry at `path`, which this folder holds, and remembers what it saw.
  const FileLook& look(std::string_view path);
  /// The attributes that the last look saw when it was at `path`, else those of a new look. One look serves
  /// once.
  std::optional<NSFileAttributes> takeAttributes(std::string_view path);

 private:
  class Stream;

  OpenFolder() = default;
  bool holds(std::string_view path) const;
  std::error_code readNames();
  void addName(std::string_view name);

  std::string _prefix;                     // what the paths of the entries begin with, slash included
  std::vector<std::string> _mountedNames;  // entries that other mounts hide
  std::unique_ptr<Stream> _stream;
  std::string _names;
  size_t _count = 0;

  std::string _lookedAt;  // a name, empty when the look has served
  FileLook _look;
};

}  // namespace quaverly
