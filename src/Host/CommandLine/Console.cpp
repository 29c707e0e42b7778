#include "Host/CommandLine/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "Host/Environment/HostWords.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::commandline {
namespace {

void writeLine(FILE* stream, std::string_view line) {
  // One call a line, so that lines of several processes do not mix.
  const std::string whole = std::string(line) + '\n';
  std::fwrite(whole.data(), 1, whole.size(), stream);
  std::fflush(stream);
}

std::string aboutAnd(std::string_view about, std::string_view what) {
  std::string line = "quaverly: ";
  if (!about.empty()) line += printable(about) + ": ";
  return line + printable(host::inUsersLanguage(what));
}

bool isColourful() {
  const char* noColour = std::getenv("NO_COLOR");
  return isatty(STDERR_FILENO) && !(noColour && *noColour);
}

/// The first `columns` characters, as the platform counts them.
std::string cut(std::string_view line, size_t columns) {
  size_t end = 0;
  for (size_t count = 0; end < line.size() && count < columns; ++count) {
    do ++end;
    while (end < line.size() && (line[end] & 0xC0) == 0x80);
  }
  return std::string(line.substr(0, end));
}

size_t terminalColumns() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

}  // namespace

std::string printable(std::string_view text) {
  std::string safe = NSStringWithReplacements(text);
  for (char& c : safe) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  }
  return safe;
}

void Console::result(std::string_view line) const {
  if (_form == Form::text) writeLine(stdout, printable(line));
}

void Console::results(const std::vector<std::string>& lines) const {
  if (_form != Form::text || lines.empty()) return;
  std::string text;
  for (const auto& line : lines) text += printable(line) + '\n';
  text.pop_back();
  writeLine(stdout, text);
}

void Console::object(const JsonObject& object) const {
  if (_form != Form::json) return;
  writeLine(stdout, object.dump(-1, ' ', false, JsonObject::error_handler_t::replace));
}

void Console::news(std::string_view line) const {
  if (_loudness != Loudness::quiet) result(host::inUsersLanguage(line));
}

void Console::problem(std::string_view about, std::string_view what) const {
  const std::string line = aboutAnd(about, what);
  writeLine(stderr, isColourful() ? "\033[31m" + line + "\033[0m" : line);
}

void Console::remark(std::string_view about, std::string_view what) const {
  if (_loudness != Loudness::quiet) writeLine(stderr, aboutAnd(about, what));
}

void Console::detail(std::string_view what) const {
  if (_loudness == Loudness::verbose) writeLine(stderr, aboutAnd("", what));
}

bool Console::showsStatus() const {
  return _form == Form::text && _loudness != Loudness::quiet && isatty(STDERR_FILENO);
}

void Console::status(std::string_view line) {
  if (!showsStatus()) return;
  std::fputs(("\r\033[K" + cut(printable(line), terminalColumns() - 1)).c_str(), stderr);
  std::fflush(stderr);
}

}  // namespace quaverly::commandline
