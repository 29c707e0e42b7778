#pragma once

#include <string>

namespace quaverly {

/// Whether a textual address, as anybody may write it ("127.0.0.1", "127.1", "::1", without brackets), is one
/// of this machine's; nothing when the text is no address. Asks the system each time: addresses come and go.
enum class AddressKind { thisMachine, foreign, none };
AddressKind kindOfAddress(const std::string& text);

/// The same for an IPv4 address in network byte order.
bool isAddressOfThisMachine(unsigned int address);

}  // namespace quaverly
