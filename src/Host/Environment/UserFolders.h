#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quaverly::host {

/// An environment variable, or nothing when it is unset or empty.
using Environment = std::function<std::optional<std::string>(const char* name)>;

/// The environment of this process.
std::optional<std::string> processEnvironment(const char* name);

/// The user's folders as the XDG base directory and user directory conventions name them. Made by nobody
/// here.
struct UserFolders {
  std::filesystem::path home;
  std::filesystem::path downloads;  ///< XDG_DOWNLOAD_DIR of user-dirs.dirs, ~/Downloads without one
  std::filesystem::path music;      ///< XDG_MUSIC_DIR of user-dirs.dirs, ~/Music without one
  std::filesystem::path data;       ///< $XDG_DATA_HOME/quaverly, ~/.local/share/quaverly without one

  static UserFolders find(const Environment& environment = processEnvironment);
};

}  // namespace quaverly::host
