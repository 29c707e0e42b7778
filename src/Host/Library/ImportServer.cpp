#include "Externals/HTTPServer/HTTPServer.h"
#include "Host/Library/PortOwner.h"
#include "Host/Library/SongServer.h"

namespace quaverly::library {
namespace {

constexpr uint16_t port = HTTPServer::port;

/// What to do while somebody else has the port.
SongServer::Readiness taken(const PortOwner& owner) {
  const std::string number = std::to_string(port);
  if (owner.program.empty()) {
    return Failure{"Port " + number + " is taken by another user's program. Try again when it is free."};
  }
  const std::string process = " (process " + std::to_string(owner.process) + ")";
  if (owner.program == nameOfThisProgram()) {
    return SongServer::Wait{"Another " + owner.program + process + " uses port " + number +
                            ". This import goes on when it is done."};
  }
  return Failure{"Port " + number + " is taken by " + owner.program + process +
                 ". End that program, then try again."};
}

}  // namespace

SongServer::Readiness ImportServer::makeReady() {
  auto* server = HTTPServer::sharedHTTPServer();
  if (server->state() == HTTPServerStateRunning) return Running{};
  // Asked first, since a start that fails is logged as an error each time.
  if (const auto owner = ownerOfPort(port)) return taken(*owner);
  server->start();
  if (server->state() == HTTPServerStateRunning) return Running{};
  if (const auto owner = ownerOfPort(port)) return taken(*owner);
  const auto error = server->lastError();
  return Failure{"The import server cannot start. " +
                 (error ? error->localizedDescription() : std::string())};
}

}  // namespace quaverly::library
