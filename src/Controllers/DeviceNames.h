#pragma once

#include <string>
#include <string_view>

namespace quaverly {

/// The name that a machine is sold under; the identifier itself for a machine that is not in the table.
std::string nameOfMachine(std::string_view identifier);

}  // namespace quaverly
