#include "Host/Environment/BrowserStart.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>
#include <string_view>

#include "Host/Environment/DesktopProgram.h"

namespace quaverly::host {
namespace {

std::string pageLeadingTo(const std::string& address) {
  return "<!doctype html>\n<meta charset=\"utf-8\">\n<title>Quaverly</title>\n"
         "<script>location.replace(\"" +
         address + "\")</script>\n<p><a rel=\"noreferrer\" href=\"" + address + "\">Go to Quaverly</a></p>\n";
}

bool writeForOwner(const std::string& file, std::string_view text) {
  unlink(file.c_str());
  const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (descriptor < 0) return false;
  const bool isWritten = write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  return close(descriptor) == 0 && isWritten;
}

}  // namespace

std::vector<std::string> browserCommand(const Environment& environment, const std::string& file) {
  if (!environment("DISPLAY") && !environment("WAYLAND_DISPLAY")) return {};
  const auto browser = environment("BROWSER");
  if (!browser) return {"xdg-open", file};
  std::istringstream words(browser->substr(0, browser->find(':')));
  std::vector<std::string> command;
  bool isNamed = false;
  for (std::string word; words >> word;) {
    if (const size_t at = word.find("%s"); at != std::string::npos) {
      word.replace(at, 2, file);
      isNamed = true;
    }
    command.push_back(word);
  }
  if (command.empty()) return {"xdg-open", file};
  if (!isNamed) command.push_back(file);
  return command;
}

BrowserStart::BrowserStart(const std::string& folder, const std::string& address,
                           const Environment& environment)
    : _file(folder + "/open.html") {
  const auto command = browserCommand(environment, _file);
  if (!command.empty() && writeForOwner(_file, pageLeadingTo(address)))
    _process = startDesktopProgram(command);
}

BrowserStart::~BrowserStart() {
  unlink(_file.c_str());
  if (_process > 0) waitpid(_process, nullptr, WNOHANG);
}

}  // namespace quaverly::host
