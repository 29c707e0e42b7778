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

/// What stands before the port, with its brackets; nothing when what follows is no port.
std::optional<std::string_view> withoutPort(std::string_view host) {
  const size_t nameEnd = host.starts_with('[') ? host.find(']') : 0;
  const size_t end = std::min(host.find(':', std::min(nameEnd, host.size())), host.size());
  const auto port = host.substr(std::min(end + 1, host.size()));
  return std::ranges::all_of(port, isDigit) ? std::optional(host.substr(0, end)) : std::nullopt;
}

bool isNameThisMachine(std::string_view name) {
  if (!std::ranges::all_of(name, [](char c) { return isNameCharacter(c) || c == '.'; })) return false;
  const auto kind = kindOfAddress(std::string(name));
  if (kind != AddressKind::none) return kind == AddressKind::thisMachine;
  return !name.empty() && name.find('.') == std::string_view::npos;
}

}  // namespace

bool isHostThisMachine(std::string_view text) {
  const auto host = withoutPort(text);
  if (!host || !host->starts_with('[')) return host && isNameThisMachine(*host);
  const auto address = host->substr(1, host->size() - std::min<size_t>(2, host->size()));
  return host->ends_with(']') && kindOfAddress(std::string(address)) == AddressKind::thisMachine;
}

}  // namespace quaverly
