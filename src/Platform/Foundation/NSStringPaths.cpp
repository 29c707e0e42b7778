#include "Platform/Foundation/NSString.h"

namespace quaverly {
namespace {

/// `path` without the slashes at its end; the root stays "/".
std::string_view withoutTrailingSlashes(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return path;
}

}  // namespace

std::string NSStringByAppendingPathComponent(std::string_view path, std::string_view component) {
  if (path.empty()) return std::string(component);
  path = withoutTrailingSlashes(path);
  component.remove_prefix(std::min(component.find_first_not_of('/'), component.size()));
  component = withoutTrailingSlashes(component);
  std::string joined;
  joined.reserve(path.size() + 1 + component.size());
  joined = path;
  if (component.empty()) return joined;
  if (!joined.ends_with('/')) joined += '/';
  return joined += component;
}

std::string NSStringByDeletingLastPathComponent(std::string_view path) {
  path = withoutTrailingSlashes(path);
  const size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return {};
  return std::string(withoutTrailingSlashes(path.substr(0, slash + 1)));
}

std::string NSStringLastPathComponent(std::string_view path) {
  path = withoutTrailingSlashes(path);
  if (path == "/") return "/";
  return std::string(path.substr(path.rfind('/') + 1));
}

}  // namespace quaverly
