#include "Host/Environment/MachineFacts.h"

#include <glib.h>
#include <sys/utsname.h>

#include <cctype>
#include <fstream>
#include <memory>

namespace quaverly::host {
namespace {

constexpr const char* application = "com.tolmarin.quaverly";
constexpr size_t identityLength = 40;

/// Escaped as D-Bus addresses want it.
std::string escaped(const std::string& path) {
  constexpr const char* digits = "0123456789abcdef";
  std::string text;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) || std::string_view("-_/.\\*").find(c) != std::string_view::npos) {
      text += c;
    } else {
      text.append("%").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
    }
  }
  return text;
}

}  // namespace

std::string machineName() {
  utsname system{};
  return uname(&system) == 0 ? system.machine : "";
}

std::string deviceIdentity(const std::filesystem::path& machineId) {
  std::string own;
  std::ifstream(machineId) >> own;
  // A system that is being installed has a word instead.
  if (own.empty() || own == "uninitialized") return {};
  const std::unique_ptr<char, void (*)(gpointer)> hash(
      g_compute_hmac_for_string(G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>(own.data()), own.size(),
                                application, -1),
      g_free);
  return std::string(hash.get()).substr(0, identityLength);
}

std::string messageBusAddress(const Environment& environment) {
  if (const auto address = environment("DBUS_SESSION_BUS_ADDRESS")) return *address;
  const auto runtime = environment("XDG_RUNTIME_DIR");
  std::error_code ignored;
  if (!runtime || !std::filesystem::is_socket(*runtime + "/bus", ignored)) return {};
  return "unix:path=" + escaped(*runtime + "/bus");
}

}  // namespace quaverly::host
