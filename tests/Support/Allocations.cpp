#include "Support/Allocations.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> inUse{0};
std::atomic<size_t> peak{0};

void* counted(void* memory) {
  if (!memory) throw std::bad_alloc();
  const size_t now = inUse += malloc_usable_size(memory);
  size_t highest = peak;
  while (now > highest && !peak.compare_exchange_weak(highest, now)) {
  }
  return memory;
}

void release(void* memory) {
  inUse -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

void* operator new(size_t size) {
  return counted(std::malloc(std::max<size_t>(size, 1)));
}
void* operator new[](size_t size) {
  return counted(std::malloc(std::max<size_t>(size, 1)));
}
void operator delete(void* memory) noexcept {
  release(memory);
}
void operator delete[](void* memory) noexcept {
  release(memory);
}
void operator delete(void* memory, size_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, size_t) noexcept {
  release(memory);
}

namespace quaverly::test {

AllocationPeak::AllocationPeak() : _before(inUse) {
  peak = _before;
}

size_t AllocationPeak::bytes() const {
  return peak - _before;
}

}  // namespace quaverly::test
