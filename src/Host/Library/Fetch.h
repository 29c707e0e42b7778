#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "Host/Library/Result.h"

namespace quaverly::library {

/// Takes what a fetch brings.
class BodyReceiver {
 public:
  virtual ~BodyReceiver() = default;
  /// The next bytes of the body, valid for the call. False gives the fetch up.
  virtual bool receive(std::span<const std::byte> bytes) = 0;
  /// Asked often, and at least about once a second: whether to go on. `announced` is 0 while it is not known.
  virtual bool goesOn(uint64_t received, uint64_t announced) = 0;
};

struct FetchLimits {
  std::chrono::seconds connecting{10};
  /// How long nothing may come.
  std::chrono::seconds stalling{30};
};

/// Fetches a body over HTTP and returns its length once it is complete. From byte 0 and without a range, over
/// IPv4 alone, past all proxies, and following no redirect. Blocks; any thread.
Result<uint64_t> fetch(const std::string& url, const FetchLimits& limits, BodyReceiver& receiver);

}  // namespace quaverly::library
