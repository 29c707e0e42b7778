#include "Host/Library/LibraryNames.h"

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

#include "Host/Library/FileNames.h"

namespace quaverly::library {
namespace {

namespace fs = std::filesystem;

bool exists(const std::string& path) {
  struct stat attributes {};
  return lstat(path.c_str(), &attributes) == 0;
}

std::optional<std::string> entryLike(const std::string& folder, const std::string& folded) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::string name = entry->path().filename().string();
    if (foldedFileName(name) == folded) return name;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> LibraryNames::sameName(const std::string& folder, const std::string& name) const {
  if (exists(folder + "/" + name)) return name;
  const std::string folded = foldedFileName(name);
  if (auto entry = entryLike(folder, folded)) return entry;
  const auto promised = _promised.find(folder + "/" + folded);
  return promised == _promised.end() ? std::nullopt : std::optional(promised->second);
}

void LibraryNames::promise(const std::string& folder, const std::string& name) {
  _promised.try_emplace(folder + "/" + foldedFileName(name), name);
}

}  // namespace quaverly::library
