#pragma once

namespace quaverly::test {

/// Moves this process into a network of its own, with nothing but a loopback interface, so that its ports
/// are nobody else's. Throws when the system does not let it.
void enterOwnNetwork();

}  // namespace quaverly::test
