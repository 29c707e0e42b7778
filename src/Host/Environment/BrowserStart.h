#pragma once

#include <sys/types.h>
#include <string>
#include <vector>

#include "Host/Environment/UserFolders.h"

namespace quaverly::host {

/// The command that shows a file in the user's browser: $BROWSER (the first of several; "%s" in it stands for
/// the file), or else xdg-open. Empty where there is no desktop.
std::vector<std::string> browserCommand(const Environment& environment, const std::string& file);

/// Opens an address in the user's browser, where there is a desktop. The address goes there by way of a file
/// for the user alone, whose script leads on, so that no list of processes shows it; the file goes with this
/// object. What cannot be opened is left to the user, who has the address.
class BrowserStart {
 public:
  /// `folder` is one that this user alone can look into.
  BrowserStart(const std::string& folder, const std::string& address,
               const Environment& environment = processEnvironment);
  ~BrowserStart();
  BrowserStart(const BrowserStart&) = delete;
  BrowserStart& operator=(const BrowserStart&) = delete;

 private:
  std::string _file;
  pid_t _process = 0;
};

}  // namespace quaverly::host
