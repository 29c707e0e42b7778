#include "Host/Environment/DesktopLinks.h"

#include <sys/wait.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "Host/Environment/DesktopProgram.h"

namespace quaverly::host {
namespace {

namespace fs = std::filesystem;

bool isScheme(std::string_view text) {
  const auto isPart = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
  };
  return !text.empty() && text.front() >= 'a' && text.front() <= 'z' && std::ranges::all_of(text, isPart);
}

std::vector<std::string> partsOf(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) {
    if (!part.empty()) parts.push_back(part);
  }
  return parts;
}

/// Folders that a variable names, behind the user's own. Relative ones do not count.
std::vector<fs::path> foldersOf(const fs::path& own, const std::string& others) {
  std::vector<fs::path> folders;
  if (own.is_absolute()) folders.push_back(own);
  for (const auto& folder : partsOf(others, ':')) {
    if (folder.front() == '/') folders.emplace_back(folder);
  }
  return folders;
}

fs::path ownFolder(const Environment& environment, const char* variable, const char* below) {
  if (const auto named = environment(variable)) return *named;
  const auto home = environment("HOME");
  return home ? fs::path(*home) / below : fs::path();
}

}  // namespace

DesktopLinks::~DesktopLinks() {
  for (const pid_t process : _started) waitpid(process, nullptr, WNOHANG);
}

bool DesktopLinks::handles(std::string_view scheme) const {
  if (!_environment("DISPLAY") && !_environment("WAYLAND_DISPLAY")) return false;
  if (!isScheme(scheme)) return false;
  const std::string type = "x-scheme-handler/" + std::string(scheme);
  return std::ranges::any_of(lists(), [&](const auto& list) { return names(list, type); });
}

bool DesktopLinks::open(const std::string& address) {
  std::erase_if(_started, [](pid_t process) { return waitpid(process, nullptr, WNOHANG) != 0; });
  const pid_t process = startDesktopProgram({"xdg-open", address});
  if (process > 0) _started.push_back(process);
  return process > 0;
}

DesktopLinks::Paths DesktopLinks::configurationFolders() const {
  return foldersOf(ownFolder(_environment, "XDG_CONFIG_HOME", ".config"),
                   _environment("XDG_CONFIG_DIRS").value_or("/etc/xdg"));
}

DesktopLinks::Paths DesktopLinks::applicationFolders() const {
  auto folders = foldersOf(ownFolder(_environment, "XDG_DATA_HOME", ".local/share"),
                           _environment("XDG_DATA_DIRS").value_or("/usr/local/share:/usr/share"));
  for (auto& folder : folders) folder /= "applications";
  return folders;
}

DesktopLinks::Paths DesktopLinks::lists() const {
  Paths lists;
  for (const auto& folder : configurationFolders()) lists.push_back(folder / "mimeapps.list");
  for (const auto& folder : applicationFolders()) {
    lists.push_back(folder / "mimeapps.list");
    lists.push_back(folder / "mimeinfo.cache");
  }
  return lists;
}

bool DesktopLinks::isInstalled(const std::string& application) const {
  if (application.find('/') != std::string::npos) return false;
  return std::ranges::any_of(applicationFolders(), [&](const auto& folder) {
    std::error_code ignored;
    return fs::is_regular_file(folder / application, ignored);
  });
}

bool DesktopLinks::names(const fs::path& list, std::string_view type) const {
  std::ifstream file(list);
  bool counts = false;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('[')) counts = !line.starts_with("[Removed");
    const size_t equals = line.find('=');
    if (!counts || equals == std::string::npos || line.substr(0, equals) != type) continue;
    const auto applications = partsOf(line.substr(equals + 1), ';');
    if (std::ranges::any_of(applications, [&](const auto& name) { return isInstalled(name); })) return true;
  }
  return false;
}

}  // namespace quaverly::host
