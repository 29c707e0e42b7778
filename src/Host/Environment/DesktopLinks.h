#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "Host/Environment/UserFolders.h"

namespace quaverly::host {

/// The applications that the desktop knows for addresses of other kinds than the web's, as the conventions
/// for MIME applications name them. Any thread, one at a time.
class DesktopLinks {
 public:
  explicit DesktopLinks(Environment environment = processEnvironment)
      : _environment(std::move(environment)) {}
  ~DesktopLinks();
  DesktopLinks(const DesktopLinks&) = delete;
  DesktopLinks& operator=(const DesktopLinks&) = delete;

  /// Whether an installed application takes addresses of this scheme; never without a desktop. Reads a few
  /// small files.
  bool handles(std::string_view scheme) const;

  /// Hands an address to its application. False when nothing could be started.
  [[nodiscard]] bool open(const std::string& address);

 private:
  using Paths = std::vector<std::filesystem::path>;
  Paths configurationFolders() const;
  Paths applicationFolders() const;
  Paths lists() const;
  bool isInstalled(const std::string& application) const;
  bool names(const std::filesystem::path& list, std::string_view type) const;

  Environment _environment;
  std::vector<pid_t> _started;
};

}  // namespace quaverly::host
