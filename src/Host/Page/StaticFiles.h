#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "Host/Page/PageRoutes.h"

namespace quaverly::page {

/// The type that browsers are told for a file of this name; "application/octet-stream" for an unknown ending.
std::string contentTypeOf(std::string_view fileName);

/// The files of a folder, for `GET` by their names in it; "/" is index.html. Which files there are is looked
/// up once, so that no path can name anything else; their contents are read anew each time.
class StaticFiles {
 public:
  explicit StaticFiles(std::string folder);

  /// Answers for every path that nobody else answers for. The routes hold a copy of this object.
  void addTo(PageRoutes& routes) const;

  bool has(std::string_view name) const { return _names.contains(name); }
  /// The file as it is now; nothing when it is gone.
  std::optional<PageAnswer> file(const std::string& name) const;

 private:
  std::string _folder;
  std::set<std::string, std::less<>> _names;
};

}  // namespace quaverly::page
