#include "Platform/Foundation/NSOperationQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <latch>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "Platform/Foundation/NSRunLoop.h"
#include "Support/SocketClient.h"

namespace quaverly {
namespace {

using namespace std::chrono_literals;

/// Counts how many are inside at a time.
class Crowd {
 public:
  void enter() {
    std::lock_guard lock(_mutex);
    _most = std::max(_most, ++_now);
    _changed.notify_all();
  }
  void leave() {
    std::lock_guard lock(_mutex);
    --_now;
    ++_left;
    _changed.notify_all();
  }
  bool waitUntilInside(int count) {
    return wait([&] { return _now >= count; });
  }
  bool waitUntilLeft(int count) {
    return wait([&] { return _left >= count; });
  }
  int most() const { return _most; }

 private:
  template <class Condition>
  bool wait(Condition condition) {
    std::unique_lock lock(_mutex);
    return _changed.wait_for(lock, 10s, condition);
  }

  std::mutex _mutex;
  std::condition_variable _changed;
  int _now = 0;
  int _left = 0;
  int _most = 0;
};

/// Holds those that wait at it until it is opened, and opens at the latest when it goes.
class Gate {
 public:
  ~Gate() { open(); }
  void open() {
    if (!_isOpen.exchange(true)) _latch.count_down();
  }
  void wait() { _latch.wait(); }

 private:
  std::atomic<bool> _isOpen = false;
  std::latch _latch{1};
};

TEST(NSOperationQueue, RunsBlocksOnThreadsOfItsOwn) {
  std::thread::id ranOn;
  std::latch ran(1);
  const auto queue = make<NSOperationQueue>();
  queue->addOperationWithBlock([&] {
    ranOn = std::this_thread::get_id();
    ran.count_down();
  });
  ran.wait();
  EXPECT_NE(ranOn, std::this_thread::get_id());
}

TEST(NSOperationQueue, RunsAsManyAtATimeAsItMayAndNoMore) {
  Crowd crowd;
  Gate gate;
  const auto queue = make<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(3);
  EXPECT_EQ(queue->maxConcurrentOperationCount(), 3U);
  for (int i = 0; i < 20; ++i) {
    queue->addOperationWithBlock([&] {
      crowd.enter();
      gate.wait();
      crowd.leave();
    });
  }
  EXPECT_TRUE(crowd.waitUntilInside(3));
  gate.open();
  EXPECT_TRUE(crowd.waitUntilLeft(20));
  EXPECT_EQ(crowd.most(), 3);
}

TEST(NSOperationQueue, WithALimitOfOneRunsBlocksInTheOrderInWhichTheyWereAdded) {
  std::vector<int> order;
  std::latch ran(100);
  const auto queue = make<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  for (int i = 0; i < 100; ++i) {
    queue->addOperationWithBlock([&, i] {
      order.push_back(i);
      ran.count_down();
    });
  }
  ran.wait();
  std::vector<int> expected(100);
  std::ranges::generate(expected, [i = 0]() mutable { return i++; });
  EXPECT_EQ(order, expected);
}

TEST(NSOperationQueue, MakesNoMoreThreadsThanItNeeds) {
  std::set<std::thread::id> threads;
  const auto queue = make<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(8);
  std::latch ran(1);
  queue->addOperationWithBlock([&] {
    threads.insert(std::this_thread::get_id());
    ran.count_down();
  });
  ran.wait();
  EXPECT_EQ(threads.size(), 1U);
}

TEST(NSOperationQueue, ALimitThatIsRaisedLetsMoreBegin) {
  Crowd crowd;
  Gate gate;
  const auto queue = make<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  for (int i = 0; i < 4; ++i) {
    queue->addOperationWithBlock([&] {
      crowd.enter();
      gate.wait();
      crowd.leave();
    });
  }
  EXPECT_TRUE(crowd.waitUntilInside(1));
  queue->setMaxConcurrentOperationCount(4);
  EXPECT_TRUE(crowd.waitUntilInside(4));
  gate.open();
  EXPECT_TRUE(crowd.waitUntilLeft(4));
}

TEST(NSOperationQueue, ALimitOfNoneCountsAsOne) {
  const auto queue = make<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(0);
  EXPECT_EQ(queue->maxConcurrentOperationCount(), 1U);
  std::latch ran(1);
  queue->addOperationWithBlock([&] { ran.count_down(); });
  ran.wait();
}

TEST(NSOperationQueue, BlocksMayAddBlocks) {
  std::latch ran(2);
  const auto queue = make<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  queue->addOperationWithBlock([&] {
    queue->addOperationWithBlock([&] { ran.count_down(); });
    ran.count_down();
  });
  ran.wait();
}

TEST(NSOperationQueue, WhichEndsWaitsForWhatRunsAndDropsWhatWaits) {
  Crowd crowd;
  Gate gate;
  std::atomic<bool> laterRan = false;
  auto queue = make<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  queue->addOperationWithBlock([&] {
    crowd.enter();
    gate.wait();
    crowd.leave();
  });
  const auto held = std::make_shared<int>(1);
  queue->addOperationWithBlock([&laterRan, held] { laterRan = true; });
  EXPECT_TRUE(crowd.waitUntilInside(1));
  // Opened only once the block that waits is gone, which the end of the queue does first.
  std::thread opener([&] {
    while (held.use_count() > 1) std::this_thread::yield();
    gate.open();
  });
  queue = nullptr;
  opener.join();
  EXPECT_TRUE(crowd.waitUntilLeft(1));
  EXPECT_FALSE(laterRan);
}

TEST(NSOperationQueue, LetsGoOfABlockBeforeTheNextBegins) {
  const auto held = std::make_shared<int>(1);
  long countLater = 0;
  std::latch ran(1);
  const auto queue = make<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  queue->addOperationWithBlock([held] {});
  queue->addOperationWithBlock([&] {
    countLater = held.use_count();
    ran.count_down();
  });
  ran.wait();
  EXPECT_EQ(countLater, 1);
}

TEST(NSOperationQueue, OfTheMainThreadRunsBlocksInLaterTurnsOfItsLoop) {
  std::string ran;
  auto& queue = NSOperationQueue::mainQueue();
  EXPECT_EQ(queue.maxConcurrentOperationCount(), 1U);
  queue.setMaxConcurrentOperationCount(5);
  EXPECT_EQ(queue.maxConcurrentOperationCount(), 1U);
  queue.addOperationWithBlock([&] { ran += 'a'; });
  queue.addOperationWithBlock([&] { ran += 'b'; });
  EXPECT_EQ(ran, "");
  NSRunLoop::mainRunLoop().runOnce();
  EXPECT_EQ(ran, "ab");
}

TEST(NSOperationQueue, WorkComesBackToTheMainThread) {
  std::thread::id cameBackOn;
  const auto queue = make<NSOperationQueue>();
  queue->addOperationWithBlock([&] {
    NSOperationQueue::mainQueue().addOperationWithBlock([&] { cameBackOn = std::this_thread::get_id(); });
  });
  EXPECT_TRUE(test::runLoopUntil([&] { return cameBackOn != std::thread::id(); }));
  EXPECT_EQ(cameBackOn, std::this_thread::get_id());
}

}  // namespace
}  // namespace quaverly
