#pragma once

#include <filesystem>
#include <system_error>

namespace quaverly::host {

/// Makes the folder for quaverly's own data, which only the user may enter, where it is missing.
std::error_code makeDataFolder(const std::filesystem::path& folder);

/// Gives the user copies of the engine files that come with the program, to switch and to edit. A file that
/// was given once is never given again: what the user changed or removed stays so when the program is
/// renewed.
std::error_code provideEngines(const std::filesystem::path& shipped, const std::filesystem::path& own);

}  // namespace quaverly::host
