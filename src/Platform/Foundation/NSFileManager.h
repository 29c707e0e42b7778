#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "Platform/Foundation/NSDirectoryContents.h"
#include "Platform/Foundation/NSError.h"
#include "Platform/Foundation/NSFileAttributes.h"

namespace quaverly {

inline constexpr const char* NSCocoaErrorDomain = "NSCocoaErrorDomain";

/// The file system under the device's paths. Holds nothing; any thread.
///
/// What lies outside the mounts does not exist. Folders on the way to a mount exist and cannot be written;
/// mounts that are read-only refuse writes. Mount points below a real folder do not show up in it.
class NSFileManager {
 public:
  static NSFileManager& defaultManager();

  /// The names of a folder's entries, hidden ones too, without "." and "..", in the file system's order;
  /// nothing when the folder cannot be read.
  ///
  /// While the contents live, questions about these entries under the very path that was given are answered
  /// through the open folder, and `attributesOfItemAtPath` after `fileExistsAtPath` about the same entry from
  /// one look at it. Without contents, every question looks afresh.
  std::optional<NSDirectoryContents> contentsOfDirectoryAtPath(std::string_view path,
                                                               Ref<NSError>* error = nullptr) const;

  /// Whether something is there; a symbolic link counts as what it leads to.
  bool fileExistsAtPath(std::string_view path) const;
  /// The same, and whether it is a directory (false when nothing is there).
  bool fileExistsAtPathIsDirectory(std::string_view path, bool& isDirectory) const;

  /// Whether this process may read what is there.
  bool isReadableFileAtPath(std::string_view path) const;

  /// The attributes of the item itself, a symbolic link's its own. Nothing when there is none, and for
  /// folders that are only on the way to a mount.
  std::optional<NSFileAttributes> attributesOfItemAtPath(std::string_view path) const;

  /// Removes a file, a link, or a folder with all that is in it. False, and an error when asked for, when
  /// there is nothing or something of it remains.
  bool removeItemAtPath(std::string_view path, Ref<NSError>* error = nullptr) const;

  /// Makes a folder and those on the way to it. A folder that is already there is no error. False, and an
  /// error when asked for, when there is no folder afterwards.
  bool createDirectoryAtPathWithIntermediateDirectories(std::string_view path,
                                                        Ref<NSError>* error = nullptr) const;
};

}  // namespace quaverly
