#pragma once

#include <string_view>

namespace quaverly {

/// Whether a request's Host may mean this machine: a name without dots, with or without a port, or an address
/// of this machine's. A dotted name may be somebody's web page that was led here by its name server, so it is
/// not answered, wherever it leads.
bool isHostThisMachine(std::string_view host);

}  // namespace quaverly
