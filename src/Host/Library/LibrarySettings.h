#pragma once

#include <string>

namespace quaverly::library {

/// Where songs go, and where what is known about them is kept. Absolute paths without a slash at the end.
struct LibrarySettings {
  std::string dataFolder;
  std::string libraryFolder;
};

}  // namespace quaverly::library
