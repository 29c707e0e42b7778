#include "Host/Library/ContentHasher.h"

#include <unistd.h>

#include <cstring>
#include <vector>

// Where the processor decides, the library looks for the widest instructions that it has.
#ifdef __x86_64__
#include <xxh_x86dispatch.h>
#else
#include <xxhash.h>
#endif

namespace quaverly::library {
namespace {

constexpr size_t pieceSize = 256 * 1024;

ContentHash hashOf(XXH128_hash_t value) {
  XXH128_canonical_t canonical;
  XXH128_canonicalFromHash(&canonical, value);
  ContentHash hash;
  static_assert(sizeof canonical.digest == sizeof hash.bytes);
  std::memcpy(hash.bytes.data(), canonical.digest, hash.bytes.size());
  return hash;
}

}  // namespace

void ContentHasher::Free::operator()(XXH3_state_s* state) const {
  XXH3_freeState(state);
}

ContentHasher::ContentHasher() : _state(XXH3_createState()) {
  XXH3_128bits_reset(_state.get());
}

void ContentHasher::add(std::span<const std::byte> bytes) {
  XXH3_128bits_update(_state.get(), bytes.data(), bytes.size());
}

ContentHash ContentHasher::hash() const {
  return hashOf(XXH3_128bits_digest(_state.get()));
}

ContentHash contentHash(std::span<const std::byte> bytes) {
  return hashOf(XXH3_128bits(bytes.data(), bytes.size()));
}

std::optional<ContentHash> hashOfFile(int descriptor) {
  ContentHasher hasher;
  std::vector<std::byte> piece(pieceSize);
  for (off_t at = 0;;) {
    const ssize_t count = pread(descriptor, piece.data(), piece.size(), at);
    if (count < 0) return std::nullopt;
    if (count == 0) return hasher.hash();
    hasher.add(std::span(piece).first(static_cast<size_t>(count)));
    at += count;
  }
}

}  // namespace quaverly::library
