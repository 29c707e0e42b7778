#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Host/CommandLine/Console.h"

namespace quaverly::commandline {

/// What a command ends the program with.
enum class ExitStatus { done = 0, failed = 1, usage = 2 };

/// The options that all commands take. The folders are absolute once the arguments are read.
struct CommonOptions {
  std::string media;
  std::string library;
  std::string data;
  bool json = false;
  bool quiet = false;
  bool verbose = false;

  Form form() const { return json ? Form::json : Form::text; }
  Loudness loudness() const {
    if (quiet) return Loudness::quiet;
    return verbose ? Loudness::verbose : Loudness::normal;
  }
};

struct ServeOptions {
  std::optional<uint16_t> pagePort;  ///< nothing takes the usual one, or the next free one
  bool opensBrowser = true;
};

struct ImportOptions {
  std::vector<std::string> files;
  std::optional<std::string> title;
  std::optional<std::string> artist;
  std::optional<std::string> album;
  std::optional<std::string> year;
  std::optional<std::string> track;
  std::optional<std::string> artwork;
  bool dryRun = false;
};

struct EnginesOptions {
  enum class Action { list, enable, disable };
  Action action = Action::list;
  std::string name;  ///< a title or a file name
};

}  // namespace quaverly::commandline
