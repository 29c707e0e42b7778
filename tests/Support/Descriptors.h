#pragma once

#include <cstddef>

namespace quaverly::test {

/// How many descriptors this process has open.
size_t openDescriptors();

/// Lets this process have as many descriptors as the system allows it.
void raiseDescriptorLimit();

}  // namespace quaverly::test
