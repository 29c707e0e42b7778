#include "Platform/Device/MountTable.h"

#include <algorithm>
#include <set>
#include <utility>

namespace quaverly {
namespace {

/// Whether `path` is `folder` or lies below it; both canonical.
bool isAtOrBelow(std::string_view path, std::string_view folder) {
  if (folder == "/") return true;
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

/// What follows `folder` in `path`, without the slash between them.
std::string_view remainder(std::string_view path, std::string_view folder) {
  path.remove_prefix(folder == "/" ? 0 : folder.size());
  if (path.starts_with('/')) path.remove_prefix(1);
  return path;
}

/// No path is empty, and the host would cut one off at a NUL.
bool namesSomething(std::string_view path) {
  return !path.empty() && path.find('\0') == std::string_view::npos;
}

std::string joined(std::string_view folder, std::string_view rest) {
  std::string path(folder);
  if (rest.empty()) return path;
  if (!path.ends_with('/')) path += '/';
  return path.append(rest);
}

}  // namespace

MountTable::MountTable(const MountTable& other) : _mounts(other.mountsCopy()) {}

MountTable& MountTable::operator=(const MountTable& other) {
  auto mounts = other.mountsCopy();
  std::lock_guard lock(_mutex);
  _mounts = std::move(mounts);
  return *this;
}

std::map<std::string, MountTable::Location> MountTable::mountsCopy() const {
  std::lock_guard lock(_mutex);
  return _mounts;
}

std::string MountTable::canonical(std::string_view path) {
  std::vector<std::string_view> parts;
  for (size_t at = 0; at < path.size();) {
    const size_t end = std::min(path.find('/', at), path.size());
    const auto part = path.substr(at, end - at);
    at = end + 1;
    if (part.empty() || part == ".") continue;
    if (part != "..") {
      parts.push_back(part);
    } else if (!parts.empty()) {
      parts.pop_back();
    }
  }
  if (parts.size() >= 2 && parts[0] == "private" && parts[1] == "var") parts.erase(parts.begin());
  if (parts.empty()) return "/";
  std::string result;
  for (const auto part : parts) result.append("/").append(part);
  return result;
}

void MountTable::mount(std::string_view devicePath, std::string hostPath, Access access) {
  std::lock_guard lock(_mutex);
  _mounts.insert_or_assign(canonical(devicePath), Location{std::move(hostPath), access});
}

void MountTable::unmount(std::string_view devicePath) {
  std::lock_guard lock(_mutex);
  _mounts.erase(canonical(devicePath));
}

std::optional<MountTable::Location> MountTable::resolve(std::string_view devicePath) const {
  if (!namesSomething(devicePath)) return std::nullopt;
  const std::string path = canonical(devicePath);
  std::lock_guard lock(_mutex);
  const Location* found = nullptr;
  std::string_view below;
  for (const auto& [mountPoint, location] : _mounts) {
    // Sorted by name, so of all prefixes the longest comes last.
    if (!isAtOrBelow(path, mountPoint)) continue;
    found = &location;
    below = remainder(path, mountPoint);
  }
  if (!found) return std::nullopt;
  return Location{joined(found->hostPath, below), found->access};
}

bool MountTable::isOnTheWay(std::string_view devicePath) const {
  if (!namesSomething(devicePath)) return false;
  const std::string path = canonical(devicePath);
  if (path == "/" && !resolve(path)) return true;
  return !resolve(path) && !namesTowardsMounts(path).empty();
}

std::vector<std::string> MountTable::namesTowardsMounts(std::string_view devicePath) const {
  const std::string path = canonical(devicePath);
  std::lock_guard lock(_mutex);
  std::set<std::string> names;
  for (const auto& [mountPoint, location] : _mounts) {
    if (mountPoint == path || !isAtOrBelow(mountPoint, path)) continue;
    const auto below = remainder(mountPoint, path);
    names.emplace(below.substr(0, below.find('/')));
  }
  return {names.begin(), names.end()};
}

std::optional<std::string> MountTable::devicePath(std::string_view hostPath) const {
  std::lock_guard lock(_mutex);
  const std::pair<const std::string, Location>* found = nullptr;
  for (const auto& mount : _mounts) {
    if (!isAtOrBelow(hostPath, mount.second.hostPath)) continue;
    if (!found || mount.second.hostPath.size() > found->second.hostPath.size()) found = &mount;
  }
  if (!found) return std::nullopt;
  return joined(found->first, remainder(hostPath, found->second.hostPath));
}

}  // namespace quaverly
