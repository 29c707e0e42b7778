#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Host/Library/Result.h"
#include "Host/Page/PageDelegate.h"
#include "Host/Page/PageRoutes.h"

namespace quaverly::page {

struct PageSettings {
  /// Nothing takes 8181, or the next free one after it.
  std::optional<uint16_t> port{};
  /// The files of the page; one that is missing is an empty folder.
  std::string resourceFolder{};
};

/// The page's server, on 127.0.0.1 alone: files and routes over HTTP, messages over a WebSocket, both for
/// nobody but the browser that was given its address. docs/page-protocol.md has the rules and limits. Runs on
/// the main loop.
class PageServer {
 public:
  static constexpr uint16_t usualPort = 8181;

  /// `delegate` must outlive the server.
  PageServer(PageSettings settings, PageDelegate& delegate);
  /// Closes all connections; the delegate hears nothing more.
  ~PageServer();
  PageServer(const PageServer&) = delete;
  PageServer& operator=(const PageServer&) = delete;

  /// Begins to listen; the failure says which port cannot be had and why.
  [[nodiscard]] library::MaybeFailure start();

  /// What to open in a browser, with the token. After `start`.
  std::string address() const;

  /// Who answers what, besides the files; may change at any time.
  PageRoutes& routes();

 private:
  class Listener;
  std::unique_ptr<Listener> _listener;
};

}  // namespace quaverly::page
