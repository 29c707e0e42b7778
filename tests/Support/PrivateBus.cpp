#include "Support/PrivateBus.h"

#include <signal.h>

#include <array>
#include <stdexcept>

#include "Support/Command.h"

namespace quaverly::test {
namespace {

constexpr const char* endMark = "org.example.end";

/// The value of "name=value" in a line of the monitor.
std::string valueOf(const std::string& name, const std::string& line) {
  const size_t at = line.find(name + "=");
  if (at == std::string::npos) return {};
  const size_t begin = at + name.size() + 1;
  return line.substr(begin, line.find_first_of("; ", begin) - begin);
}

}  // namespace

void RunningProgram::Close::operator()(FILE* file) const {
  pclose(file);
}

RunningProgram::RunningProgram(const std::string& command)
    : _output(popen(("echo $$; exec " + command).c_str(), "re")), _id(std::stoi(line())) {}

RunningProgram::~RunningProgram() {
  kill(_id, SIGKILL);
}

std::string RunningProgram::line() {
  std::string text;
  std::array<char, 1024> piece{};
  while (fgets(piece.data(), static_cast<int>(piece.size()), _output.get())) {
    text += piece.data();
    if (!text.ends_with('\n')) continue;
    text.pop_back();
    return text;
  }
  throw std::runtime_error("The program ended.");
}

PrivateBus::PrivateBus()
    : _daemon("dbus-daemon --session --nofork --nopidfile --print-address=1"),
      _address(_daemon.line()),
      _monitor("dbus-monitor --address " + quoted(_address) +
               " \"destination='com.tolmarin.quaverly'\" \"interface='org.example.end'\"") {
  // What the bus says last to a monitor before it is one.
  while (valueOf("member", _monitor.line()) != "NameLost") continue;
}

std::vector<std::string> PrivateBus::calls() {
  run("dbus-send --bus=" + quoted(_address) + " / " + endMark + ".End");
  std::vector<std::string> calls;
  while (true) {
    const std::string line = _monitor.line();
    const std::string interface = valueOf("interface", line);
    if (interface == endMark) return calls;
    if (line.starts_with("method call")) {
      calls.push_back(valueOf("path", line) + " " + interface + " " + valueOf("member", line));
    }
  }
}

}  // namespace quaverly::test
