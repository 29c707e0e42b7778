#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quaverly::page {

/// One page in a browser, as those see it who speak with it. Main thread; valid from `connected` until
/// `disconnected` returns.
class PageConnection {
 public:
  /// How much may wait for a page that does not read; then it is given up.
  static constexpr size_t maximumQueue = size_t{8} * 1024 * 1024;

  /// Sends a message, in the order of the calls, and never waits. Dropped when the page is gone.
  virtual void send(std::string text) = 0;
  /// How many bytes wait to be sent: who describes a state may skip steps while a slow page catches up.
  virtual size_t queuedBytes() const = 0;
  /// Ends the connection; `disconnected` follows in a later turn.
  virtual void close() = 0;

 protected:
  ~PageConnection() = default;
};

/// Who speaks with the pages. Everything is told on the main thread, and never from inside a call to the
/// server or a connection.
class PageDelegate {
 public:
  virtual ~PageDelegate() = default;

  virtual void connected(PageConnection&) {}
  /// A message, valid UTF-8 of at most 64 KiB, from a page that need not be ours: nothing in it is certain.
  virtual void received(PageConnection&, std::string_view) {}
  virtual void receivedBinary(PageConnection&, std::string_view) {}
  virtual void disconnected(PageConnection&) {}
};

}  // namespace quaverly::page
