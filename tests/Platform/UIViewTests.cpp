#include "Platform/UIKit/UIView.h"

#include <gtest/gtest.h>

#include <numbers>

#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UIViewController.h"

namespace quaverly {
namespace {

constexpr unsigned margins = 45;

TEST(UIView, TheFrameFollowsCentreAndBounds) {
  const auto view = make<UIView>(CGRect{10, 20, 100, 50});
  EXPECT_EQ(view->center(), (CGPoint{60, 45}));
  view->setCenter({100, 100});
  EXPECT_EQ(view->frame(), (CGRect{50, 75, 100, 50}));
  view->setBounds({0, 0, 20, 10});
  EXPECT_EQ(view->frame(), (CGRect{90, 95, 20, 10}));
}

TEST(UIView, ATransformTurnsAndScalesAroundTheCentre) {
  const auto view = make<UIView>(CGRect{0, 0, 100, 50});
  view->setTransform(CGAffineTransformMakeScale(0.6, 0.6));
  EXPECT_NEAR(view->frame().x, 20, 1e-9);
  EXPECT_NEAR(view->frame().width, 60, 1e-9);
  EXPECT_EQ(view->bounds(), (CGRect{0, 0, 100, 50}));
  view->setTransform(CGAffineTransformMakeRotation(std::numbers::pi / 2));
  EXPECT_NEAR(view->frame().x, 25, 1e-9);
  EXPECT_NEAR(view->frame().height, 100, 1e-9);
}

TEST(UIView, AFrameThatIsSetUnderATransformIsTheFrameAfterwards) {
  const auto view = make<UIView>(CGRect{0, 0, 100, 50});
  view->setTransform(CGAffineTransformMakeScale(0.5, 0.5));
  view->setFrame({10, 10, 40, 20});
  EXPECT_EQ(view->frame(), (CGRect{10, 10, 40, 20}));
  EXPECT_EQ(view->bounds(), (CGRect{0, 0, 80, 40}));
}

struct Autoresizing {
  unsigned mask;
  CGRect before;
  CGRect after;
};

class UIViewAutoresizing : public testing::TestWithParam<Autoresizing> {};

// The superview grows from 100 × 100 to 200 × 150.
TEST_P(UIViewAutoresizing, WhatGivesWayTakesTheChange) {
  const auto outer = make<UIView>(CGRect{0, 0, 100, 100});
  const auto inner = make<UIView>(GetParam().before);
  inner->setAutoresizingMask(GetParam().mask);
  outer->addSubview(inner);
  outer->setFrame({5, 5, 200, 150});
  EXPECT_EQ(inner->frame(), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(Masks, UIViewAutoresizing,
                         testing::Values(Autoresizing{0, {10, 10, 30, 30}, {10, 10, 30, 30}},
                                         Autoresizing{2, {10, 10, 30, 30}, {10, 10, 130, 30}},
                                         Autoresizing{18, {0, 0, 100, 100}, {0, 0, 200, 150}},
                                         Autoresizing{1, {10, 10, 30, 30}, {110, 10, 30, 30}},
                                         Autoresizing{8, {10, 10, 30, 30}, {10, 60, 30, 30}},
                                         Autoresizing{2 | 32, {10, 10, 30, 30}, {10, 10, 130, 30}},
                                         Autoresizing{margins, {40, 40, 20, 20}, {90, 65, 20, 20}},
                                         Autoresizing{1 | 4, {20, 0, 20, 20}, {45, 0, 20, 20}},
                                         Autoresizing{1 | 2, {50, 0, 50, 20}, {100, 0, 100, 20}}));

TEST(UIView, AViewCanForbidThatItsSubviewsAreResized) {
  const auto outer = make<UIView>(CGRect{0, 0, 100, 100});
  const auto inner = make<UIView>(CGRect{0, 0, 100, 100});
  inner->setAutoresizingMask(18);
  outer->addSubview(inner);
  outer->setAutoresizesSubviews(false);
  outer->setFrame({0, 0, 200, 200});
  EXPECT_EQ(inner->frame(), (CGRect{0, 0, 100, 100}));
}

TEST(UIView, AddingAViewTakesItFromWhereItWasAndPutsItOnTop) {
  const auto first = make<UIView>();
  const auto second = make<UIView>();
  const auto moved = make<UIView>();
  first->addSubview(moved);
  first->addSubview(make<UIView>());
  first->addSubview(moved);
  EXPECT_EQ(first->subviews().back().get(), moved.get());
  EXPECT_EQ(first->subviews().size(), 2U);
  second->addSubview(moved);
  EXPECT_EQ(first->subviews().size(), 1U);
  EXPECT_EQ(moved->superview(), second.get());
  moved->removeFromSuperview();
  EXPECT_EQ(moved->superview(), nullptr);
}

TEST(UIView, AViewIsNeverPutIntoItself) {
  const auto outer = make<UIView>();
  const auto inner = make<UIView>();
  outer->addSubview(inner);
  inner->addSubview(outer);
  outer->addSubview(outer);
  EXPECT_EQ(outer->superview(), nullptr);
  EXPECT_EQ(inner->superview(), outer.get());
}

TEST(UIView, SubviewsOutliveASuperviewThatIsLetGo) {
  const auto inner = make<UIView>();
  {
    const auto outer = make<UIView>();
    outer->addSubview(inner);
  }
  EXPECT_EQ(inner->superview(), nullptr);
}

TEST(UIView, TheTintComesFromTheNearestViewThatHasOne) {
  const auto outer = make<UIView>();
  const auto inner = make<UIView>();
  outer->addSubview(inner);
  EXPECT_EQ(inner->tintColor(), UIColor::systemBlueColor());
  outer->setTintColor(UIColor::whiteColor());
  EXPECT_EQ(inner->tintColor(), UIColor::whiteColor());
  inner->setTintColor(UIColor::blackColor());
  EXPECT_EQ(inner->tintColor(), UIColor::blackColor());
}

TEST(UIView, EveryChangeThatCanBeSeenIsCounted) {
  const auto view = make<UIView>(CGRect{0, 0, 10, 10});
  const auto changed = [before = CATransaction::changeCount()]() mutable {
    return std::exchange(before, CATransaction::changeCount()) != CATransaction::changeCount();
  };
  auto watch = changed;
  EXPECT_FALSE(watch());
  view->setAlpha(0.5);
  EXPECT_TRUE(watch());
  view->setAlpha(0.5);
  view->setFrame({0, 0, 10, 10});
  EXPECT_FALSE(watch());
  view->layer()->setCornerRadius(3);
  EXPECT_TRUE(watch());
  view->addSubview(make<UIView>());
  EXPECT_TRUE(watch());
}

TEST(UIView, TurningTheScreenResizesWhatFillsIt) {
  auto& application = UIApplication::sharedApplication();
  const auto window = make<UIWindow>(CGRect{0, 0, 375, 667});
  const auto controller = make<UIViewController>();
  window->setRootViewController(controller);
  window->makeKeyAndVisible();
  application.screenChanged({667, 375}, UIInterfaceOrientation::LandscapeRight);
  EXPECT_EQ(controller->view()->frame(), (CGRect{0, 0, 667, 375}));
  EXPECT_EQ(application.statusBarOrientation(), UIInterfaceOrientation::LandscapeRight);
  application.screenChanged({375, 667}, UIInterfaceOrientation::Portrait);
  application.setKeyWindow(nullptr);
}

}  // namespace
}  // namespace quaverly
