#include "Platform/Foundation/NSOperationQueue.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly {

class NSOperationQueue::Workers {
 public:
  using Block = std::function<void()>;

  ~Workers() {
    dropWaiting();
    _changed.notify_all();
    for (auto& thread : _threads) thread.join();
  }

  void add(Block block) {
    std::lock_guard lock(_mutex);
    _waiting.push_back(std::move(block));
    if (_running + _waiting.size() > _threads.size() && _threads.size() < _limit)
      _threads.emplace_back([this] { work(); });
    _changed.notify_one();
  }

  void setLimit(size_t limit) {
    std::lock_guard lock(_mutex);
    _limit = std::max<size_t>(limit, 1);
    while (_threads.size() < std::min(_limit, _running + _waiting.size()))
      _threads.emplace_back([this] { work(); });
    _changed.notify_all();
  }

  size_t limit() const {
    std::lock_guard lock(_mutex);
    return _limit;
  }

 private:
  void dropWaiting() {
    std::deque<Block> dropped;  // goes when the lock is gone: what blocks hold may do anything
    std::lock_guard lock(_mutex);
    _ends = true;
    dropped.swap(_waiting);
  }

  void work() {
    std::unique_lock lock(_mutex);
    while (true) {
      _changed.wait(lock, [this] { return _ends || mayBegin(); });
      if (_ends) return;
      Block block = std::move(_waiting.front());
      _waiting.pop_front();
      ++_running;
      lock.unlock();
      block();
      block = nullptr;  // what it holds goes before the next one begins, and not under the lock
      lock.lock();
      --_running;
      // Whoever could not begin because of this one may be able to now.
      _changed.notify_all();
    }
  }

  bool mayBegin() const { return !_waiting.empty() && _running < _limit; }

  mutable std::mutex _mutex;
  std::condition_variable _changed;
  std::deque<Block> _waiting;
  std::vector<std::thread> _threads;
  size_t _limit = std::max(1U, std::thread::hardware_concurrency());
  size_t _running = 0;
  bool _ends = false;
};

NSOperationQueue::NSOperationQueue(std::unique_ptr<Workers> workers) : _workers(std::move(workers)) {}

NSOperationQueue::NSOperationQueue() : NSOperationQueue(std::make_unique<Workers>()) {
  // Blocks use these to their end, which for a queue that lives as long as the program is its own.
  mainQueue();
  NSRunLoop::mainRunLoop();
  Device::current();
}

NSOperationQueue::~NSOperationQueue() = default;

NSOperationQueue& NSOperationQueue::mainQueue() {
  static NSOperationQueue queue{std::unique_ptr<Workers>()};
  return queue;
}

void NSOperationQueue::addOperationWithBlock(std::function<void()> block) {
  if (_workers) {
    _workers->add(std::move(block));
  } else {
    NSRunLoop::mainRunLoop().performBlock(std::move(block));
  }
}

void NSOperationQueue::setMaxConcurrentOperationCount(size_t count) {
  if (_workers) _workers->setLimit(count);
}

size_t NSOperationQueue::maxConcurrentOperationCount() const {
  return _workers ? _workers->limit() : 1;
}

}  // namespace quaverly
