#include "Platform/QuartzCore/CATransaction.h"

#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly {

void CATransaction::schedule() {
  _isScheduled = true;
  NSRunLoop::mainRunLoop().performBlock(commit);
}

void CATransaction::commit() {
  if (const auto commit = _commit) commit();
  _isScheduled = false;
}

}  // namespace quaverly
