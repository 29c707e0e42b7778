#include <gtest/gtest.h>

#include <numbers>
#include <optional>

#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/UIKit/UIApplication.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using namespace std::chrono_literals;

constexpr unsigned fade = 131076;

class UIViewAnimationTest : public testing::Test {
 protected:
  void SetUp() override {
    window->makeKeyAndVisible();
    window->addSubview(view);
  }
  void TearDown() override { UIApplication::sharedApplication().setKeyWindow(nullptr); }

  void animateAlpha(double alpha, std::optional<bool>& outcome, double delay = 0, unsigned options = fade) {
    UIView::animateWithDurationDelayOptionsAnimationsCompletion(
        0.1, delay, options, [&] { view->setAlpha(alpha); }, [&](bool finished) { outcome = finished; });
  }
  double seenAlpha() { return view->animations().front().valueAt(device->clock->now())[0]; }

  test::TestDevice device;
  Ref<UIWindow> window = make<UIWindow>(CGRect{0, 0, 375, 667});
  Ref<UIView> view = make<UIView>(CGRect{0, 0, 10, 10});
  std::optional<bool> first;
  std::optional<bool> second;
};

TEST_F(UIViewAnimationTest, TheViewHasTheNewValueAtOnceAndIsSeenOnTheWay) {
  view->setAlpha(0);
  animateAlpha(1, first);
  EXPECT_EQ(view->alpha(), 1);
  EXPECT_NEAR(seenAlpha(), 0, 1e-9);
  device.clock().advance(50ms);
  EXPECT_GT(seenAlpha(), 0.5);  // eased out: more than half of it is done after half the time
  EXPECT_LT(seenAlpha(), 1);
  EXPECT_FALSE(first);
  device.clock().advance(50ms);
  EXPECT_EQ(first, true);
  EXPECT_TRUE(view->animations().empty());
}

TEST_F(UIViewAnimationTest, TheDelayComesBeforeTheDuration) {
  animateAlpha(0, first, 2.0);
  device.clock().advance(2050ms);
  EXPECT_FALSE(first);
  EXPECT_LT(seenAlpha(), 0.5);
  device.clock().advance(50ms);
  EXPECT_EQ(first, true);
}

TEST_F(UIViewAnimationTest, ALaterAnimationOfAPropertyEndsTheEarlierOneAtOnce) {
  animateAlpha(0, first, 2.0);
  animateAlpha(0.5, second);
  EXPECT_EQ(first, false);
  EXPECT_EQ(view->animations().size(), 1U);
  device.clock().advance(100ms);
  EXPECT_EQ(second, true);
  device.clock().advance(10s);
  EXPECT_EQ(first, false);
}

TEST_F(UIViewAnimationTest, AnotherPropertyIsLeftAlone) {
  animateAlpha(0, first);
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(
      0.1, 0, fade,
      [&] {
        view->setCenter({50, 50});
      },
      [&](bool finished) { second = finished; });
  EXPECT_FALSE(first);
  EXPECT_EQ(view->animations().size(), 2U);
  device.clock().advance(100ms);
  EXPECT_EQ(first, true);
  EXPECT_EQ(second, true);
}

TEST_F(UIViewAnimationTest, AGroupThatLosesOneOfTwoPropertiesEndsWithTheOther) {
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(
      0.1, 0, fade,
      [&] {
        view->setAlpha(0);
        view->setTransform(CGAffineTransformMakeScale(0.6, 0.6));
      },
      [&](bool finished) { first = finished; });
  animateAlpha(1, second);
  EXPECT_FALSE(first);
  device.clock().advance(100ms);
  EXPECT_EQ(first, false);
  EXPECT_EQ(second, true);
}

TEST_F(UIViewAnimationTest, LeavingTheWindowEndsWhatLiesBelowToo) {
  const auto inner = make<UIView>();
  view->addSubview(inner);
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(
      0.6, 0, 26, [&] { inner->setTransform(CGAffineTransformMakeRotation(std::numbers::pi)); },
      [&](bool finished) { first = finished; });
  device.clock().advance(1h);
  EXPECT_FALSE(first);
  EXPECT_EQ(inner->animations().size(), 1U);
  view->removeFromSuperview();
  EXPECT_EQ(first, false);
  EXPECT_TRUE(inner->animations().empty());
}

TEST_F(UIViewAnimationTest, ADetachedViewStillCompletesAfterItsTime) {
  view->removeFromSuperview();
  animateAlpha(0, first);
  EXPECT_FALSE(first);
  device.clock().advance(99ms);
  EXPECT_FALSE(first);
  device.clock().advance(1ms);
  EXPECT_EQ(first, true);
}

TEST_F(UIViewAnimationTest, ACompletionNeverRunsInsideTheCallThatSetItUp) {
  // The earlier completion takes the view away, which ends the later animation while it is set up.
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(
      0.1, 0, fade, [&] { view->setAlpha(0); }, [&](bool) { view->removeFromSuperview(); });
  animateAlpha(1, first);
  EXPECT_EQ(view->superview(), nullptr);
  EXPECT_FALSE(first);
  while (NSRunLoop::mainRunLoop().runOnce()) continue;
  EXPECT_EQ(first, false);
}

TEST_F(UIViewAnimationTest, FromTheCurrentStateBeginsWhereTheViewIsSeen) {
  view->setAlpha(0);
  animateAlpha(1, first);
  device.clock().advance(50ms);
  const double seen = seenAlpha();
  animateAlpha(0, second);
  EXPECT_DOUBLE_EQ(seenAlpha(), seen);
}

TEST_F(UIViewAnimationTest, AValueThatWasSetMeanwhileIsTheCurrentState) {
  animateAlpha(0, first, 2.0);
  view->setAlpha(0.25);
  animateAlpha(1, second);
  EXPECT_NEAR(seenAlpha(), 0.25, 1e-9);
}

TEST_F(UIViewAnimationTest, RepeatingAndReversingSwingsBackAndForth) {
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(
      0.6, 0, 26, [&] { view->setTransform(CGAffineTransformMakeRotation(1 - std::numbers::pi)); });
  const auto angle = [&] {
    const auto value = view->animations().front().valueAt(device->clock->now());
    return decomposed({value[0], value[1], value[2], value[3], value[4], value[5]}).angle;
  };
  EXPECT_NEAR(angle(), 0, 1e-9);
  device.clock().advance(300ms);
  EXPECT_NEAR(angle(), (1 - std::numbers::pi) / 2, 1e-6);
  device.clock().advance(300ms);
  EXPECT_NEAR(angle(), 1 - std::numbers::pi, 1e-6);
  device.clock().advance(300ms);
  EXPECT_NEAR(angle(), (1 - std::numbers::pi) / 2, 1e-6);
  device.clock().advance(300ms);
  EXPECT_NEAR(angle(), 0, 1e-6);
}

TEST_F(UIViewAnimationTest, NothingToAnimateStillCompletesAfterItsTime) {
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(
      0.1, 0, fade, [] {}, [&](bool finished) { first = finished; });
  EXPECT_FALSE(first);
  device.clock().advance(100ms);
  EXPECT_EQ(first, true);
}

TEST(UITransformParts, ATransformIsTakenApartAndPutTogetherAgain) {
  for (const double angle : {0.0, 1.0, -2.0, std::numbers::pi}) {
    const auto parts = decomposed(composed({angle, 0.6, 2, 3, 4}));
    EXPECT_NEAR(parts.angle, angle, 1e-12);
    EXPECT_NEAR(parts.scaleX, 0.6, 1e-12);
    EXPECT_NEAR(parts.scaleY, 2, 1e-12);
    EXPECT_EQ(parts.shiftX, 3);
  }
}

}  // namespace
}  // namespace quaverly
