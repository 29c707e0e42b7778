#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

/// Runs blocks on threads of its own, in the order in which they were added, so many at a time as it may; or,
/// as the main queue, one after the other on the main thread.
///
/// Threads are made when there is work for them and kept. Destroying a queue drops the blocks that wait and
/// waits for those that run; a block that throws ends the program. Any thread.
class NSOperationQueue : public NSObject {
 public:
  /// A queue that may use all processors.
  NSOperationQueue();
  ~NSOperationQueue() override;

  /// The queue of the main run loop; its limit is one and stays so.
  static NSOperationQueue& mainQueue();

  /// Never runs `block` inside the call.
  void addOperationWithBlock(std::function<void()> block);

  /// How many blocks may run at a time, at least one. Those that run already go on.
  void setMaxConcurrentOperationCount(size_t count);
  size_t maxConcurrentOperationCount() const;

 private:
  class Workers;
  explicit NSOperationQueue(std::unique_ptr<Workers> workers);

  std::unique_ptr<Workers> _workers;  // null for the main queue
};

}  // namespace quaverly
