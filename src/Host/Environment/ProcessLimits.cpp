#include "Host/Environment/ProcessLimits.h"

#include <sys/resource.h>

#include <algorithm>

namespace quaverly::host {
namespace {

constexpr rlim_t enoughDescriptors = 65536;

}  // namespace

void raiseDescriptorLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, enoughDescriptors));
  setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace quaverly::host
