#include "Platform/Foundation/NSRunLoop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

namespace quaverly {
namespace {

using namespace std::chrono_literals;

NSRunLoop& loop() {
  return NSRunLoop::mainRunLoop();
}

TEST(NSRunLoop, ABlockRunsInALaterTurnAndInTheOrderOfTheCalls) {
  std::string ran;
  loop().performBlock([&] { ran += 'a'; });
  loop().performBlock([&] { ran += 'b'; });
  EXPECT_EQ(ran, "");
  EXPECT_TRUE(loop().runOnce());
  EXPECT_EQ(ran, "ab");
  EXPECT_FALSE(loop().runOnce());
}

TEST(NSRunLoop, BlocksComeFromAnyThreadAndRunOnTheLoopsOwn) {
  std::thread::id ranOn;
  std::thread worker([&] {
    loop().performBlock([&] {
      ranOn = std::this_thread::get_id();
      loop().stop();
    });
  });
  loop().run();
  worker.join();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST(NSRunLoop, AStoppedLoopRunsAgainAndLosesNoBlock) {
  std::string ran;
  loop().performBlock([&] {
    ran += 'a';
    loop().stop();
  });
  loop().performBlock([&] {
    ran += 'b';
    loop().stop();
  });
  loop().run();
  EXPECT_EQ(ran, "a");
  loop().run();
  EXPECT_EQ(ran, "ab");
}

TEST(NSRunLoop, AStopThatComesJustBeforeTheRunIsNotLost) {
  loop().stop();
  loop().run();
  SUCCEED();
}

TEST(NSRunLoop, WorkThatBegetsWorkDoesNotKeepOneTurnForEver) {
  int runs = 0;
  std::function<void()> again = [&] {
    ++runs;
    loop().performBlock(again);
  };
  loop().performBlock(again);
  EXPECT_TRUE(loop().runOnce());
  EXPECT_GT(runs, 1);
}

TEST(NSRunLoop, RunOnceWaitsNoLongerThanItsLimit) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(loop().runOnce(5ms));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 5ms);
}

TEST(RunLoopClock, AnAlarmGoesOffOnceAndNotInsideTheCall) {
  int rings = 0;
  const auto alarm = loop().clock()->after(0ms, [&] { ++rings; });
  EXPECT_EQ(rings, 0);
  while (rings == 0) loop().runOnce(1s);
  EXPECT_FALSE(loop().runOnce(2ms));
  EXPECT_EQ(rings, 1);
}

TEST(RunLoopClock, AnAlarmThatIsGoneIsSilentEvenWhenItWasDueAlready) {
  std::unique_ptr<Clock::Alarm> second;
  int rings = 0;
  const auto first = loop().clock()->after(1ms, [&] {
    ++rings;
    second.reset();
  });
  second = loop().clock()->after(1ms, [&] { ++rings; });
  std::this_thread::sleep_for(3ms);  // both are due when the loop looks at its timers
  while (loop().runOnce(5ms)) {
  }
  EXPECT_EQ(rings, 1);
}

TEST(RunLoopClock, AnAlarmMayEndItselfFromItsOwnCallback) {
  std::unique_ptr<Clock::Alarm> alarm;
  bool rang = false;
  alarm = loop().clock()->after(0ms, [&] {
    alarm.reset();
    rang = true;
  });
  while (!rang) loop().runOnce(1s);
}

}  // namespace
}  // namespace quaverly
