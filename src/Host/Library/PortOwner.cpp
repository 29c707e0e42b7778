#include "Host/Library/PortOwner.h"

#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace quaverly::library {
namespace {

namespace fs = std::filesystem;

/// The state of a listening socket, as the kernel's tables write it.
constexpr const char* listening = "0A";

/// Of a line such as "  0: 00000000:1F90 00000000:0000 0A 0:0 0:0 0 1000 0 12345 …" the socket's inode, if
/// the line is of a socket that listens on `port`.
std::optional<std::string> listenersInode(const std::string& line, uint16_t port) {
  std::istringstream fields(line);
  std::string slot, local, remote, state, queues, timer, retransmits, user, timeout, inode;
  fields >> slot >> local >> remote >> state >> queues >> timer >> retransmits >> user >> timeout >> inode;
  const size_t colon = local.rfind(':');
  if (state != listening || colon == std::string::npos || inode.empty()) return std::nullopt;
  unsigned number = 0;
  std::from_chars(local.data() + colon + 1, local.data() + local.size(), number, 16);
  if (number != port) return std::nullopt;
  return inode;
}

std::optional<std::string> listenersInode(uint16_t port) {
  for (const auto* table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
    std::ifstream lines(table);
    for (std::string line; std::getline(lines, line);) {
      if (auto inode = listenersInode(line, port)) return inode;
    }
  }
  return std::nullopt;
}

bool hasSocket(const fs::path& process, const std::string& socket) {
  std::error_code error;
  for (fs::directory_iterator entry(process / "fd", error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code gone;  // descriptors close while we look
    if (fs::read_symlink(entry->path(), gone) == socket) return true;
  }
  return false;
}

std::string programName(const fs::path& process) {
  std::ifstream file(process / "comm");
  std::string name;
  std::getline(file, name);
  return name;
}

std::optional<pid_t> processNumber(const std::string& name) {
  pid_t number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  if (error != std::errc() || end != name.data() + name.size()) return std::nullopt;
  return number;
}

}  // namespace

std::optional<PortOwner> ownerOfPort(uint16_t port) {
  const auto inode = listenersInode(port);
  if (!inode) return std::nullopt;
  const std::string socket = "socket:[" + *inode + "]";
  std::error_code error;
  for (fs::directory_iterator entry("/proc", error), end; !error && entry != end; entry.increment(error)) {
    const auto process = processNumber(entry->path().filename());
    if (process && hasSocket(entry->path(), socket)) return PortOwner{*process, programName(entry->path())};
  }
  return PortOwner{};
}

std::string nameOfThisProgram() {
  return programName("/proc/self");
}

}  // namespace quaverly::library
