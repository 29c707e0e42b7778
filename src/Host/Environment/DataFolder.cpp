#include "Host/Environment/DataFolder.h"

#include <sys/stat.h>

#include <cerrno>
#include <fstream>
#include <set>
#include <string>

namespace quaverly::host {
namespace {

namespace fs = std::filesystem;

/// Names the files that were given, a line each.
constexpr const char* givenList = ".given";

std::set<std::string> namesIn(const fs::path& list) {
  std::set<std::string> names;
  std::ifstream lines(list);
  for (std::string line; std::getline(lines, line);) names.insert(line);
  return names;
}

/// A whole file appears or none, and none is replaced.
std::error_code copyFile(const fs::path& from, const fs::path& to) {
  std::error_code error;
  if (fs::exists(to, error) || error) return error;
  const fs::path unfinished = to.string() + ".new";
  fs::copy_file(from, unfinished, fs::copy_options::overwrite_existing, error);
  if (!error) fs::permissions(unfinished, fs::perms::owner_write, fs::perm_options::add, error);
  if (!error) fs::rename(unfinished, to, error);
  return error;
}

}  // namespace

std::error_code makeDataFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder.parent_path(), error);
  if (!error && mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) return {errno, std::generic_category()};
  return error;
}

std::error_code provideEngines(const fs::path& shipped, const fs::path& own) {
  std::error_code error;
  fs::create_directory(own, error);
  const auto given = namesIn(own / givenList);
  std::ofstream list;
  for (fs::directory_iterator entry(shipped, error), end; !error && entry != end; entry.increment(error)) {
    const std::string name = entry->path().filename();
    if (given.contains(name)) continue;
    if (const auto failed = copyFile(entry->path(), own / name)) return failed;
    if (!list.is_open()) list.open(own / givenList, std::ios::app);
    list << name << '\n';
  }
  return error;
}

}  // namespace quaverly::host
