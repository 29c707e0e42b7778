#include "Host/Page/PageSecrets.h"

#include <sys/random.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace quaverly::page {

std::string makeSecret() {
  std::array<unsigned char, 16> bytes{};
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw std::system_error(errno, std::generic_category(), "no random numbers");
  }
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : bytes) text.append({digits[byte >> 4], digits[byte & 15]});
  return text;
}

bool isSameSecret(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  unsigned char difference = 0;
  for (size_t i = 0; i < a.size(); ++i) difference |= static_cast<unsigned char>(a[i] ^ b[i]);
  return difference == 0;
}

}  // namespace quaverly::page
