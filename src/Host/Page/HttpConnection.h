#pragma once

#include <chrono>
#include <cstddef>
#include <memory>

#include "Host/Page/PageSite.h"

namespace quaverly::page {

// What a browser's connection may take.
inline constexpr size_t maximumHeadSize = size_t{16} * 1024;
inline constexpr std::chrono::seconds headLimit{10};      ///< for a whole head, from connecting on
inline constexpr std::chrono::seconds idleLimit{60};      ///< between two requests
inline constexpr std::chrono::seconds bodyLimit{60};      ///< for a whole body
inline constexpr std::chrono::seconds progressLimit{30};  ///< for a piece of an answer to be taken
// And how much of a refused request's body is read so that its sender gets to see the answer.
inline constexpr size_t maximumDrain = size_t{1024} * 1024;
inline constexpr std::chrono::seconds drainLimit{2};

/// Serves the requests of a connection, given as its descriptor, one after the other, until it ends or
/// becomes a WebSocket. The site keeps it.
void serveConnection(int descriptor, const std::shared_ptr<PageSite>& site);

}  // namespace quaverly::page
