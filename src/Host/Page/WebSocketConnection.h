#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "Host/Page/PageSite.h"

namespace quaverly::page {

// What a page may send, and how long it may leave us waiting.
inline constexpr size_t maximumMessage = size_t{64} * 1024;
inline constexpr unsigned messagesPerWindow = 200;  ///< more wait in the page's own buffers
inline constexpr std::chrono::milliseconds messageWindow{100};
inline constexpr std::chrono::seconds handshakeLimit{5};  ///< at the beginning, and to leave at the end
inline constexpr std::chrono::seconds sendLimit{30};      ///< for one message to be taken

/// Speaks with a page over a connection, given as its descriptor, whose request for a WebSocket is `head`.
/// The site keeps it, and its delegate hears of it.
void serveWebSocket(int descriptor, std::string head, const std::shared_ptr<PageSite>& site);

}  // namespace quaverly::page
