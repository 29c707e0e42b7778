#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

#include "Host/Library/TagRewriter.h"

struct XXH3_state_s;

namespace quaverly::library {

/// Hashes bytes as they come.
class ContentHasher {
 public:
  ContentHasher();
  void add(std::span<const std::byte> bytes);
  ContentHash hash() const;

 private:
  struct Free {
    void operator()(XXH3_state_s* state) const;
  };
  std::unique_ptr<XXH3_state_s, Free> _state;
};

ContentHash contentHash(std::span<const std::byte> bytes);

/// The hash of a whole file, read in pieces and at positions of its own; nothing when reading fails.
std::optional<ContentHash> hashOfFile(int descriptor);

}  // namespace quaverly::library
