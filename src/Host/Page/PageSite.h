#pragma once

#include <algorithm>
#include <list>
#include <memory>
#include <string>

#include "Host/Page/PageDelegate.h"
#include "Host/Page/PageGuard.h"
#include "Host/Page/PageRoutes.h"

namespace quaverly::page {

/// A connection that the server keeps until it ends.
class KeptConnection {
 public:
  virtual ~KeptConnection() = default;
  /// Closes it at once; nobody is told.
  virtual void abandon() = 0;
  /// Whether it has not even asked for anything yet, so that it may go when there are too many.
  virtual bool isIdle() const = 0;
};

/// What all connections of a server share. They know it weakly: it ends with the server. Main thread.
struct PageSite {
  static constexpr size_t maximumConnections = 128;
  static constexpr size_t maximumWebSockets = 16;

  PageSite(PageDelegate& pageDelegate, PageRoutes& pageRoutes, uint16_t port)
      : delegate(pageDelegate), routes(pageRoutes), guard(port) {}

  PageDelegate& delegate;
  PageRoutes& routes;
  PageGuard guard;
  std::list<std::shared_ptr<KeptConnection>> connections;  // the oldest first
  size_t webSockets = 0;

  void keep(std::shared_ptr<KeptConnection> connection) { connections.push_back(std::move(connection)); }
  void forget(const KeptConnection& connection) {
    connections.remove_if([&](const auto& kept) { return kept.get() == &connection; });
  }
};

}  // namespace quaverly::page
