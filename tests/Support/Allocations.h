#pragma once

#include <cstddef>

// Linking this counts what `new` gives in the whole program.
namespace quaverly::test {

/// The most memory that was in use at one time since this object was made, beyond what was in use then.
class AllocationPeak {
 public:
  AllocationPeak();
  size_t bytes() const;

 private:
  size_t _before;
};

}  // namespace quaverly::test
