#pragma once

#include <string_view>

namespace quaverly {

/// Frameworks are loaded and unloaded by path, counted. Loading one that the device lacks fails. Main thread
/// only.
bool loadFramework(std::string_view path);
void unloadFramework(std::string_view path);
bool isFrameworkLoaded(std::string_view path);

}  // namespace quaverly
