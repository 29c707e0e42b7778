#include "Host/Environment/UserFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string_view>

namespace quaverly::host {
namespace {

using std::filesystem::path;

path homeFolder(const Environment& environment) {
  if (const auto home = environment("HOME")) return *home;
  const passwd* user = getpwuid(getuid());
  return user && user->pw_dir ? user->pw_dir : "/";
}

/// An absolute folder from the environment; the conventions say to ignore a relative one.
path absoluteOr(const std::optional<std::string>& value, path otherwise) {
  return value && value->starts_with('/') ? path(*value) : std::move(otherwise);
}

/// The value of a line `NAME="$HOME/Folder"` or `NAME="/folder"` of user-dirs.dirs.
std::optional<path> userDirectory(const path& settings, std::string_view name, const path& home) {
  std::ifstream lines(settings);
  std::optional<path> found;
  for (std::string line; std::getline(lines, line);) {
    std::string_view rest = line;
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
    if (!rest.starts_with(name) || !rest.substr(name.size()).starts_with("=\"")) continue;
    rest.remove_prefix(name.size() + 2);
    rest = rest.substr(0, rest.find('"'));
    constexpr std::string_view inHome = "$HOME";
    if (rest.starts_with(inHome)) {
      rest.remove_prefix(std::min(rest.find_first_not_of('/', inHome.size()), rest.size()));
      found = home / rest;
    } else if (rest.starts_with('/')) {
      found = path(rest);
    }
  }
  return found;
}

}  // namespace

std::optional<std::string> processEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value && *value ? std::optional<std::string>(value) : std::nullopt;
}

UserFolders UserFolders::find(const Environment& environment) {
  UserFolders folders;
  folders.home = homeFolder(environment);
  const path settings =
      absoluteOr(environment("XDG_CONFIG_HOME"), folders.home / ".config") / "user-dirs.dirs";
  folders.downloads =
      userDirectory(settings, "XDG_DOWNLOAD_DIR", folders.home).value_or(folders.home / "Downloads");
  folders.music = userDirectory(settings, "XDG_MUSIC_DIR", folders.home).value_or(folders.home / "Music");
  folders.data = absoluteOr(environment("XDG_DATA_HOME"), folders.home / ".local/share") / "quaverly";
  return folders;
}

}  // namespace quaverly::host
