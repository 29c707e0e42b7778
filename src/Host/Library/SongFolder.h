#pragma once

#include <string>
#include <vector>

#include "Host/Library/Result.h"

namespace quaverly::library {

/// The folder of a song in the library. Folders made for it go with this object when nothing was put into
/// them.
class SongFolder {
 public:
  /// `library` is there; the two others are made where they are missing.
  static Result<SongFolder> make(const std::string& library, const std::string& artist,
                                 const std::string& album);
  SongFolder(SongFolder&&) noexcept = default;
  SongFolder& operator=(SongFolder&&) = delete;
  ~SongFolder();

  /// Returns when the folder's entries, and the entries of folders made, are safe on the disk.
  MaybeFailure flush() const;

 private:
  SongFolder() = default;
  MaybeFailure makeOne(const std::string& path);

  std::string _path;
  std::vector<std::string> _made;  // the outer one first
};

}  // namespace quaverly::library
