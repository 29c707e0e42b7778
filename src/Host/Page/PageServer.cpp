#include "Host/Page/PageServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "Host/Library/SystemFailure.h"
#include "Host/Page/HttpConnection.h"
#include "Host/Page/PageSite.h"
#include "Host/Page/StaticFiles.h"
#include "Platform/Foundation/Sockets/ConnectionAcceptor.h"

namespace quaverly::page {
namespace {

using library::Failure;
using library::MaybeFailure;

/// How many ports are tried, from the usual one on.
constexpr uint16_t portsTried = 100;
constexpr int backlog = 128;

/// A socket that listens on a port of the loopback interface; null with `errno` set when there can be none.
std::shared_ptr<Descriptor> listenOn(uint16_t port) {
  const int number = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (number < 0) return nullptr;
  auto listener = std::make_shared<Descriptor>(number);
  const int yes = 1;
  ::setsockopt(number, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  if (::bind(number, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return nullptr;
  if (::listen(number, backlog) != 0) return nullptr;
  return listener;
}

Failure cannotListen(uint16_t port, int error) {
  const std::string number = std::to_string(port);
  if (error != EADDRINUSE) return library::systemFailure("The page cannot use port " + number, error);
  return {"Port " + number + " is taken by another program. Name a free one with --page-port."};
}

}  // namespace

class PageServer::Listener {
 public:
  Listener(PageSettings settings, PageDelegate& delegate)
      : _settings(std::move(settings)), _delegate(delegate) {
    StaticFiles(_settings.resourceFolder).addTo(_routes);
  }
  ~Listener() {
    if (!_site) return;
    for (const auto& connection : _site->connections) connection->abandon();
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  MaybeFailure start() {
    if (_settings.port) return listen(*_settings.port);
    MaybeFailure failure = listen(usualPort);
    for (uint16_t next = 1; next < portsTried && failure && errno == EADDRINUSE; ++next) {
      failure = listen(static_cast<uint16_t>(usualPort + next));
    }
    return failure;
  }

  std::string address() const { return _site ? _site->guard.address() : ""; }
  PageRoutes& routes() { return _routes; }

 private:
  MaybeFailure listen(uint16_t port) {
    const auto listener = listenOn(port);
    if (!listener) return cannotListen(port, errno);
    _site = std::make_shared<PageSite>(_delegate, _routes, port);
    _acceptor = std::make_unique<ConnectionAcceptor>(listener);
    acceptNext();
    return std::nullopt;
  }

  void acceptNext() {
    _acceptor->acceptNext([this](const std::shared_ptr<Descriptor>& connection) {
      if (connection) take(*connection);
      acceptNext();
    });
  }

  // When there are too many, the one that has waited longest without a request makes room.
  void take(Descriptor& connection) {
    auto& connections = _site->connections;
    if (connections.size() >= PageSite::maximumConnections) {
      const auto idle = std::ranges::find_if(connections, [](const auto& kept) { return kept->isIdle(); });
      if (idle == connections.end()) return;
      (*idle)->abandon();
      connections.erase(idle);
    }
    serveConnection(connection.release(), _site);
  }

  PageSettings _settings;
  PageDelegate& _delegate;
  PageRoutes _routes;
  std::shared_ptr<PageSite> _site;
  std::unique_ptr<ConnectionAcceptor> _acceptor;
};

PageServer::PageServer(PageSettings settings, PageDelegate& delegate)
    : _listener(std::make_unique<Listener>(std::move(settings), delegate)) {}
PageServer::~PageServer() = default;

MaybeFailure PageServer::start() {
  return _listener->start();
}

std::string PageServer::address() const {
  return _listener->address();
}

PageRoutes& PageServer::routes() {
  return _listener->routes();
}

}  // namespace quaverly::page
