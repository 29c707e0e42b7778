#include "Platform/CFNetwork/LocalHostGuard.h"

#include <algorithm>
#include <optional>
#include <string>

#include "Platform/Foundation/Sockets/LocalAddresses.h"

namespace quaverly {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isNameCharacter(char c) {
  const char lowerCase = static_cast<char>(c | 0x20);
  return (lowerCase >= 'a' && lowerCase <= 'z') || isDigit(c) || c == '-' || c == '_';
}

/// The host without brackets and port; nothing when it is not written as one.
std::optional<std::string> withoutPort(std::string_view host) {
  const size_t bracket = host.starts_with('[') ? host.find(']') : 0;
  if (bracket == std::string_view::npos) return std::nullopt;
  const size_t end = std::min(host.find(':', bracket), host.size());
  const auto port = host.substr(std::min(end + 1, host.size()));
  if (!std::ranges::all_of(port, isDigit)) return std::nullopt;
  if (bracket == 0) return std::string(host.substr(0, end));
  if (end != bracket + 1) return std::nullopt;
  return std::string(host.substr(1, bracket - 1));
}

}  // namespace

bool isHostThisMachine(std::string_view text) {
  const auto host = withoutPort(text);
  if (!host) return false;
  switch (kindOfAddress(*host)) {
    case AddressKind::thisMachine:
      return true;
    case AddressKind::foreign:
      return false;
    case AddressKind::none:
      break;
  }
  return !host->empty() && std::ranges::all_of(*host, isNameCharacter);
}

}  // namespace quaverly
