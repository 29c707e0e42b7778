#pragma once

#include <string>

#include "Host/CommandLine/Options.h"

// Every command, each in a source file of its own. They set up the device that they need, write to standard
// output and standard error, and answer what the program ends with.
namespace quaverly::commandline {

ExitStatus runServe(Console& console, const CommonOptions& common, const ServeOptions& options);
ExitStatus runImport(Console& console, const CommonOptions& common, const ImportOptions& options);
ExitStatus runList(const Console& console, const CommonOptions& common, const std::string& path);
ExitStatus runInfo(const Console& console, const CommonOptions& common, const std::string& file);
ExitStatus runMail(const Console& console, const CommonOptions& common, const std::string& output);
ExitStatus runEngines(const Console& console, const CommonOptions& common, const EnginesOptions& options);
ExitStatus runLibrary(const Console& console, const CommonOptions& common);
ExitStatus runDownloads(const Console& console, const CommonOptions& common);

}  // namespace quaverly::commandline
