#pragma once

#include <map>
#include <optional>
#include <string>

namespace quaverly::library {

/// The names that a library's folders hold, seen as the most careless file system would: two names that
/// differ in case or composition alone are one.
class LibraryNames {
 public:
  /// The name in `folder` that is the same as `name`, preferring `name` itself; nothing when it is free.
  std::optional<std::string> sameName(const std::string& folder, const std::string& name) const;

  /// From now on counts `name` in `folder` as there.
  void promise(const std::string& folder, const std::string& name);

 private:
  std::map<std::string, std::string> _promised;  // by folder, a slash, and the folded name
};

}  // namespace quaverly::library
