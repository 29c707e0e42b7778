#include "Platform/Foundation/NSObject.h"

namespace quaverly {

NSObject* NSObject::retain() {
  _retainCount.fetch_add(1, std::memory_order_relaxed);
  return this;
}

void NSObject::release() {
  if (_retainCount.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

size_t NSObject::retainCount() const {
  return _retainCount.load(std::memory_order_relaxed);
}

std::shared_ptr<const bool> NSObject::liveness() {
  if (!_liveness) _liveness = std::make_shared<bool>(true);
  return _liveness;
}

NSObject::~NSObject() {
  if (_liveness) *_liveness = false;
}

}  // namespace quaverly
