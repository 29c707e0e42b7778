#include "Host/Environment/ProcessLimits.h"

#include <malloc.h>
#include <sys/resource.h>

#include <algorithm>

namespace quaverly::host {
namespace {

constexpr rlim_t enoughDescriptors = 65536;
constexpr int largeMemory = 1 << 20;

}  // namespace

void raiseDescriptorLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, enoughDescriptors));
  setrlimit(RLIMIT_NOFILE, &limit);
}

void returnLargeMemoryAtOnce() {
  // Said in words, both stay what they are; left alone, the allocator raises them with every picture.
  mallopt(M_MMAP_THRESHOLD, largeMemory);
  mallopt(M_TRIM_THRESHOLD, largeMemory);
  // What the pictures' workers free can then be used by all others.
  mallopt(M_ARENA_MAX, 2);
}

}  // namespace quaverly::host
