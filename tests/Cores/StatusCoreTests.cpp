#include "Cores/StatusCore.h"

#include <gtest/gtest.h>

#include <numbers>
#include <thread>

#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UIScreen.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using namespace std::chrono_literals;

class StatusCoreTest : public testing::Test {
 protected:
  void SetUp() override { window->makeKeyAndVisible(); }
  void TearDown() override { UIApplication::sharedApplication().setKeyWindow(nullptr); }

  void runMainQueue() {
    while (NSRunLoop::mainRunLoop().runOnce()) continue;
  }
  bool isShown(const Ref<UIView>& view) const { return view->superview() == window.get(); }
  const CAShapeLayer& ringOf(const Ref<UIImageView>& circle) {
    return dynamic_cast<const CAShapeLayer&>(*circle->layer()->sublayers().at(0));
  }

  test::TestDevice device;
  Ref<UIWindow> window = make<UIWindow>(CGRect{0, 0, 375, 667});
  StatusCore& status = StatusCore::sharedInstance();
  const Ref<UIView>& card = status.messageView();
  const Ref<UIView>& loading = status.loadingView();
};

TEST_F(StatusCoreTest, ThereIsOneForTheWholeProcess) {
  StatusCore* elsewhere = nullptr;
  std::jthread([&] { elsewhere = &StatusCore::sharedInstance(); }).join();
  EXPECT_EQ(elsewhere, &status);
}

TEST_F(StatusCoreTest, TheCardIsAsWideAsTheScreenLessThirtyAndCentred) {
  EXPECT_EQ(card->frame(), (CGRect{15, 283.5, 345, 100}));
  EXPECT_EQ(card->backgroundColor(), (CGColor{245 / 255.0, 245 / 255.0, 245 / 255.0, 1}));
  EXPECT_EQ(card->layer()->cornerRadius(), 4);
  EXPECT_TRUE(card->layer()->masksToBounds());
  const auto& label = status.messageLabel();
  EXPECT_EQ(label->superview(), card.get());
  EXPECT_EQ(label->frame(), (CGRect{0, 0, 345, 100}));
  EXPECT_EQ(label->font(), UIFont::fontWithNameSize("Arial", 18));
  EXPECT_EQ(label->textColor(), UIColor::colorWithWhiteAlpha(68 / 255.0, 1));
  EXPECT_EQ(label->textAlignment(), NSTextAlignment::Center);
  EXPECT_EQ(label->lineBreakMode(), NSLineBreakMode::ByWordWrapping);
  EXPECT_EQ(label->numberOfLines(), 0);
}

TEST_F(StatusCoreTest, TheLoadingViewLetsTouchesThroughAndFillsTheScreen) {
  EXPECT_EQ(loading->frame(), (CGRect{0, 0, 375, 667}));
  EXPECT_EQ(loading->backgroundColor(), UIColor::clearColor());
  EXPECT_EQ(loading->autoresizingMask(), 18U);
  EXPECT_FALSE(loading->isUserInteractionEnabled());
}

TEST_F(StatusCoreTest, TheWordStandsBesideTheRings) {
  const auto& container = loading->subviews().at(0);
  const auto* const word = dynamic_cast<UILabel*>(container->subviews().at(0).get());
  ASSERT_TRUE(word);
  EXPECT_EQ(word->text(), "LOADING");  // this bundle has no tables
  EXPECT_EQ(word->font(), UIFont::fontWithNameSize("Arial", 18));
  EXPECT_EQ(word->textColor(), UIColor::whiteColor());
  EXPECT_EQ(word->textAlignment(), NSTextAlignment::Center);
  EXPECT_EQ(word->lineBreakMode(), NSLineBreakMode::ByWordWrapping);
  EXPECT_EQ(word->numberOfLines(), 0);
  EXPECT_EQ(word->frame().x, 50);
  EXPECT_EQ(word->center().y, 25);
  EXPECT_EQ(container->bounds().size(), (CGSize{word->frame().width + 50, 50}));
  EXPECT_EQ(container->center(), (CGPoint{187.5, 333.5}));
  EXPECT_EQ(container->autoresizingMask(), 45U);
  EXPECT_EQ(container->subviews().at(1), Ref<UIView>(status.firstCircleView()));
  EXPECT_EQ(container->subviews().at(2), Ref<UIView>(status.secondCircleView()));
}

TEST_F(StatusCoreTest, TheRingsAreSixTenthsOfACircle) {
  EXPECT_EQ(status.firstCircleView()->frame(), (CGRect{0, 0, 45, 45}));
  EXPECT_EQ(status.secondCircleView()->frame(), (CGRect{5, 5, 35, 35}));
  const auto& outer = ringOf(status.firstCircleView());
  const auto& inner = ringOf(status.secondCircleView());
  EXPECT_EQ(outer.path()->ellipse, (CGRect{0, 0, 45, 45}));
  EXPECT_EQ(inner.path()->ellipse, (CGRect{0, 0, 35, 35}));
  EXPECT_EQ(outer.strokeColor(), (CGColor{90 / 255.0, 160 / 255.0, 252 / 255.0, 1}));
  EXPECT_EQ(inner.strokeColor(), (CGColor{208 / 255.0, 128 / 255.0, 245 / 255.0, 1}));
  for (const auto* ring : {&outer, &inner}) {
    EXPECT_EQ(ring->fillColor(), UIColor::clearColor());
    EXPECT_EQ(ring->opacity(), 1);
    EXPECT_EQ(ring->strokeStart(), 0);
    EXPECT_EQ(ring->strokeEnd(), 0.6);
    EXPECT_EQ(ring->lineWidth(), 5);
  }
}

TEST_F(StatusCoreTest, AMessageFadesInStaysTwoSecondsAndFadesAway) {
  status.showTempMessage("Imported");
  EXPECT_EQ(status.messageLabel()->text(), "Imported");
  ASSERT_TRUE(isShown(card));
  ASSERT_EQ(card->animations().size(), 2U);
  for (const auto& animation : card->animations()) {
    EXPECT_EQ(animation.options, 131076U);
    EXPECT_EQ(animation.duration, 100ms);
    EXPECT_EQ(animation.delay, 0ms);
    if (animation.property == UIViewAnimation::Property::alpha) {
      EXPECT_EQ(animation.from[0], 0);
      EXPECT_EQ(animation.to[0], 1);
    } else {
      EXPECT_EQ(animation.from[0], 0.6);
      EXPECT_EQ(animation.to[0], 1);
    }
  }
  device.clock().advance(100ms);
  ASSERT_EQ(card->animations().size(), 2U);
  EXPECT_EQ(card->animations()[0].delay, 2s);
  EXPECT_EQ(card->animations()[0].duration, 100ms);
  EXPECT_EQ(card->alpha(), 0);
  device.clock().advance(2s + 99ms);
  EXPECT_TRUE(isShown(card));
  device.clock().advance(1ms);
  EXPECT_FALSE(isShown(card));
}

TEST_F(StatusCoreTest, ALongMessageIsWrappedInTheCardAndCutOffBelowIt) {
  std::string words;
  for (int i = 0; i < 60; ++i) words += "imported ";
  status.showTempMessage(words);
  const auto& label = status.messageLabel();
  EXPECT_LE(label->sizeThatFits({345, 1000}).width, 345);
  EXPECT_GT(label->sizeThatFits({345, 1000}).height, 100);
  EXPECT_EQ(label->frame(), (CGRect{0, 0, 345, 100}));
  EXPECT_TRUE(card->clipsToBounds());
}

TEST_F(StatusCoreTest, AnAbsentMessageIsAnEmptyCard) {
  status.showTempMessage(std::nullopt);
  EXPECT_EQ(status.messageLabel()->text(), std::nullopt);
  EXPECT_TRUE(isShown(card));
}

TEST_F(StatusCoreTest, ASecondMessageWhileTheFirstIsShownIsGoneAtOnce) {
  status.showTempMessage("one");
  device.clock().advance(1s);
  status.showTempMessage("two");
  EXPECT_EQ(status.messageLabel()->text(), "two");
  // The first one's fade-out was ended, and what follows it takes the card away.
  EXPECT_FALSE(isShown(card));
  runMainQueue();
  device.clock().advance(10s);
  EXPECT_FALSE(isShown(card));
}

TEST_F(StatusCoreTest, ASecondMessageWhileTheFirstFadesInTakesTheCardOver) {
  status.showTempMessage("one");
  device.clock().advance(50ms);
  status.showTempMessage("two");
  // The first one's fade-in was ended, and its fade-out began at once, in the second one's place.
  EXPECT_TRUE(isShown(card));
  runMainQueue();
  device.clock().advance(10s);
  EXPECT_FALSE(isShown(card));
}

TEST_F(StatusCoreTest, WithoutAWindowTheCardIsAddedToNothing) {
  UIApplication::sharedApplication().setKeyWindow(nullptr);
  status.showTempMessage("unseen");
  EXPECT_EQ(card->superview(), nullptr);
  device.clock().advance(10s);
  EXPECT_EQ(card->superview(), nullptr);
  EXPECT_EQ(device.clock().alarms(), 0U);
}

TEST_F(StatusCoreTest, LoadingIsShownInALaterTurn) {
  status.showLoading();
  EXPECT_FALSE(isShown(loading));
  runMainQueue();
  EXPECT_TRUE(isShown(loading));
  EXPECT_EQ(loading->alpha(), 1);
  EXPECT_TRUE(loading->transform().isIdentity());
  device.clock().advance(100ms);
  EXPECT_TRUE(loading->animations().empty());
}

TEST_F(StatusCoreTest, LoadingThatIsShownAgainFadesInAnewAndTheRingsStartAgain) {
  status.showLoading();
  runMainQueue();
  device.clock().advance(750ms);
  status.showLoading();
  runMainQueue();
  ASSERT_EQ(loading->animations().size(), 2U);
  for (const auto& animation : loading->animations()) {
    EXPECT_EQ(animation.options, 131076U);
    EXPECT_EQ(animation.duration, 100ms);
    EXPECT_EQ(animation.delay, 0ms);
    EXPECT_EQ(animation.from[0], animation.property == UIViewAnimation::Property::alpha ? 0 : 0.6);
  }
  const auto& swing = status.firstCircleView()->animations().at(0);
  EXPECT_EQ(swing.begin, device->clock->now());
  EXPECT_EQ(swing.from[0], 1) << "from no turn at all";
  EXPECT_TRUE(isShown(loading));
}

TEST_F(StatusCoreTest, TheRingsSwingInOppositeSensesThroughDifferentAngles) {
  status.showLoading();
  runMainQueue();
  const auto angle = [&](const Ref<UIImageView>& circle) {
    const auto value = circle->animations().at(0).valueAt(device->clock->now());
    return decomposed({value[0], value[1], value[2], value[3], value[4], value[5]}).angle;
  };
  EXPECT_EQ(status.firstCircleView()->animations().at(0).options, 26U);
  EXPECT_EQ(status.firstCircleView()->animations().at(0).duration, 600ms);
  device.clock().advance(600ms);
  EXPECT_NEAR(angle(status.firstCircleView()), std::numbers::pi, 1e-6);
  EXPECT_NEAR(angle(status.secondCircleView()), -2.141592653589793, 1e-6);
  device.clock().advance(600ms);
  EXPECT_NEAR(angle(status.firstCircleView()), 0, 1e-6);
  device.clock().advance(1h);
  EXPECT_EQ(status.secondCircleView()->animations().size(), 1U);
  loading->removeFromSuperview();
  EXPECT_TRUE(status.firstCircleView()->animations().empty());
}

TEST_F(StatusCoreTest, HidingFadesOutAndRemoves) {
  status.showLoading();
  runMainQueue();
  device.clock().advance(1s);
  status.hideLoading();
  runMainQueue();
  EXPECT_TRUE(isShown(loading));
  EXPECT_EQ(loading->alpha(), 0);
  device.clock().advance(100ms);
  EXPECT_FALSE(isShown(loading));
}

TEST_F(StatusCoreTest, AHideFollowedByAShowRemovesTheViewThatWasAddedAgain) {
  status.showLoading();
  runMainQueue();
  device.clock().advance(1s);
  status.hideLoading();
  status.showLoading();
  runMainQueue();
  EXPECT_FALSE(isShown(loading));
}

TEST_F(StatusCoreTest, HidingWhatIsHiddenRemovesNothing) {
  status.hideLoading();
  runMainQueue();
  device.clock().advance(1s);
  EXPECT_EQ(loading->superview(), nullptr);
}

TEST_F(StatusCoreTest, WorkersMayAskInOrder) {
  std::jthread([&] {
    status.showLoading();
    status.hideLoading();
    status.showLoading();
  }).join();
  runMainQueue();
  device.clock().advance(1s);
  EXPECT_FALSE(isShown(loading));
  status.showLoading();
  runMainQueue();
  EXPECT_TRUE(isShown(loading));
}

TEST_F(StatusCoreTest, ATurnedScreenKeepsTheRingsCentredAndTheCardAsItWas) {
  UIScreen::mainScreen().setSize({667, 375});
  status.showLoading();
  runMainQueue();
  device.clock().advance(1s);
  EXPECT_EQ(loading->frame(), (CGRect{0, 0, 667, 375}));
  EXPECT_EQ(loading->subviews().at(0)->center(), (CGPoint{333.5, 187.5}));
  EXPECT_EQ(card->bounds().width, 345);
}

}  // namespace
}  // namespace quaverly
