#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "Host/Environment/UserFolders.h"

// What the device is told about the machine it runs on.
namespace quaverly::host {

/// The locale that dates and numbers are written in (LC_ALL, LC_TIME, LANG), for example "de_AT"; "en_US" for
/// none and for the plain ones ("C", "POSIX").
std::string localeIdentifier(const Environment& environment);

/// The user's languages in order (LANGUAGE, LC_ALL, LC_MESSAGES, LANG), as names of string tables: a regional
/// setting names its plain language's table when the bundle has none of that very name. Never empty.
std::vector<std::string> preferredLanguages(const Environment& environment,
                                            const std::filesystem::path& bundle);

/// The zone's name in the system's zone database: TZ, then /etc/localtime, then /etc/timezone, then UTC.
std::string timeZoneName(const Environment& environment, const std::filesystem::path& etc = "/etc");

/// VERSION_ID of os-release; "0" where it has none.
std::string systemVersion(const std::filesystem::path& osRelease = "/etc/os-release");

/// The files for the device's fonts by their names, those that are installed: Liberation Sans for "Arial",
/// Inter for "HelveticaNeue" and its "HelveticaNeue-UltraLight".
std::map<std::string, std::string, std::less<>> fontFiles(
    const std::filesystem::path& fonts = "/usr/share/fonts");

/// The settings bundle that belongs to this program: beside it in a build or an installation
/// (../share/quaverly/QuaverlySettings.bundle).
std::filesystem::path bundleFolder();

}  // namespace quaverly::host
