#include "Platform/Foundation/Sockets/LocalAddresses.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace quaverly {
namespace {

/// Whether an interface of this machine has an address that `matches`, a test of its socket address.
template <class Test>
bool hasInterface(sa_family_t family, Test matches) {
  ifaddrs* list = nullptr;
  if (::getifaddrs(&list) != 0) return false;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, ::freeifaddrs);
  for (const auto* at = list; at; at = at->ifa_next) {
    if (at->ifa_addr && at->ifa_addr->sa_family == family && matches(at->ifa_addr)) return true;
  }
  return false;
}

bool isAddressOfThisMachine(const in6_addr& address) {
  if (IN6_IS_ADDR_LOOPBACK(&address)) return true;
  if (IN6_IS_ADDR_V4MAPPED(&address)) {
    in_addr_t mapped;
    std::memcpy(&mapped, &address.s6_addr[12], sizeof mapped);
    return quaverly::isAddressOfThisMachine(mapped);
  }
  return hasInterface(AF_INET6, [&](const sockaddr* found) {
    sockaddr_in6 other;
    std::memcpy(&other, found, sizeof other);
    return IN6_ARE_ADDR_EQUAL(&other.sin6_addr, &address);
  });
}

}  // namespace

bool isAddressOfThisMachine(unsigned int address) {
  constexpr unsigned int loopback = 127;
  if (ntohl(address) >> 24 == loopback) return true;
  return hasInterface(AF_INET, [&](const sockaddr* found) {
    sockaddr_in other;
    std::memcpy(&other, found, sizeof other);
    return other.sin_addr.s_addr == address;
  });
}

AddressKind kindOfAddress(const std::string& text) {
  const auto kind = [](bool isOurs) { return isOurs ? AddressKind::thisMachine : AddressKind::foreign; };
  in6_addr six;
  if (::inet_pton(AF_INET6, text.c_str(), &six) == 1) return kind(isAddressOfThisMachine(six));
  // Its short and hexadecimal spellings too, as resolvers understand them.
  in_addr four;
  if (::inet_aton(text.c_str(), &four) == 1) return kind(isAddressOfThisMachine(four.s_addr));
  return AddressKind::none;
}

}  // namespace quaverly
