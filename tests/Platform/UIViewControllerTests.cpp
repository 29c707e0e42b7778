#include "Platform/UIKit/UIViewController.h"

#include <gtest/gtest.h>

#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UIImagePickerController.h"
#include "Platform/UIKit/UITableViewController.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using namespace std::chrono_literals;

class Screen : public UIViewController {
 public:
  int loaded = 0;
  int tapped = 0;
  void viewDidLoad() override { ++loaded; }
  void tap() { ++tapped; }
};

class UIViewControllerTest : public testing::Test {
 protected:
  void SetUp() override {
    window->setRootViewController(navigation);
    window->makeKeyAndVisible();
    settle();
  }
  void TearDown() override {
    UIApplication::sharedApplication().screenChanged({375, 667}, UIInterfaceOrientation::Portrait);
    UIApplication::sharedApplication().setKeyWindow(nullptr);
  }
  void settle() {
    UIApplication::sharedApplication().layoutIfNeeded();
    device.clock().advance(1s);
    while (NSRunLoop::mainRunLoop().runOnce()) continue;
    UIApplication::sharedApplication().layoutIfNeeded();
  }

  test::TestDevice device;
  Ref<UIWindow> window = make<UIWindow>(CGRect{0, 0, 375, 667});
  Ref<Screen> root = make<Screen>();
  Ref<UINavigationController> navigation = make<UINavigationController>(root);
};

TEST_F(UIViewControllerTest, AViewIsLoadedOnceAndWhenItIsAskedFor) {
  const auto screen = make<Screen>();
  EXPECT_FALSE(screen->isViewLoaded());
  EXPECT_EQ(screen->loaded, 0);
  EXPECT_EQ(screen->view()->frame(), (CGRect{0, 0, 375, 667}));
  EXPECT_EQ(screen->view(), screen->view());
  EXPECT_EQ(screen->loaded, 1);
}

TEST_F(UIViewControllerTest, ScreensAreStackedUnderOneBar) {
  const auto next = make<Screen>();
  root->setTitle("Root");
  navigation->pushViewControllerAnimated(next, UIAnimated::Yes);
  settle();
  EXPECT_EQ(next->navigationController(), navigation.get());
  EXPECT_EQ(next->view()->frame(), (CGRect{0, 0, 375, 667}));
  EXPECT_EQ(root->view()->superview(), nullptr);
  EXPECT_FALSE(navigation->navigationBar()->backButton()->isHidden());
  EXPECT_EQ(navigation->navigationBar()->backButton()->title(), "Root");
  navigation->navigationBar()->backButton()->sendActionsForControlEvents(UIControlEvents::TouchUpInside);
  settle();
  EXPECT_EQ(navigation->topViewController(), root.get());
  EXPECT_EQ(next->view()->superview(), nullptr);
  EXPECT_TRUE(navigation->navigationBar()->backButton()->isHidden());
  EXPECT_EQ(next->navigationController(), nullptr);
}

TEST_F(UIViewControllerTest, TheBarLiesBelowTheStatusBarAndIsLowerInLandscape) {
  EXPECT_EQ(navigation->navigationBar()->frame(), (CGRect{0, 20, 375, 44}));
  UIApplication::sharedApplication().screenChanged({667, 375}, UIInterfaceOrientation::LandscapeLeft);
  EXPECT_EQ(navigation->navigationBar()->frame(), (CGRect{0, 0, 667, 32}));
}

TEST_F(UIViewControllerTest, TheBarSendsTheItemsActions) {
  root->navigationItem()->setRightBarButtonItem(
      make<UIBarButtonItem>("Go", UITargetAction(root.get(), &Screen::tap)));
  settle();
  const auto& button = navigation->navigationBar()->rightButton();
  EXPECT_EQ(button->title(), "Go");
  button->sendActionsForControlEvents(UIControlEvents::TouchUpInside);
  EXPECT_EQ(root->tapped, 1);
}

TEST_F(UIViewControllerTest, ATitleViewIsPlacedBetweenTheButtonsWhateverItsOrigin) {
  const auto title = make<UIView>(CGRect{375, 0, 375, 44});
  root->navigationItem()->setTitleView(title);
  root->navigationItem()->setRightBarButtonItem(
      make<UIBarButtonItem>("/mobile", UITargetAction(root.get(), &Screen::tap)));
  settle();
  const auto& button = navigation->navigationBar()->rightButton();
  EXPECT_EQ(title->superview(), navigation->navigationBar().get());
  EXPECT_EQ(title->frame().x, 8);
  EXPECT_EQ(title->frame().maxX(), button->frame().x - 8);
  EXPECT_EQ(title->frame().y, 0);
}

TEST_F(UIViewControllerTest, ATableBeginsBelowTheBarUnlessItChoseItsInsets) {
  const auto tables = make<UITableViewController>();
  navigation->pushViewControllerAnimated(tables, UIAnimated::No);
  settle();
  EXPECT_EQ(tables->tableView()->contentInset().top, 64);
  EXPECT_EQ(tables->tableView()->contentOffset().y, -64);
  UIApplication::sharedApplication().screenChanged({667, 375}, UIInterfaceOrientation::LandscapeLeft);
  EXPECT_EQ(tables->tableView()->contentInset().top, 32);
  tables->tableView()->setContentInset({-35, 0, 64, 0});
  UIApplication::sharedApplication().screenChanged({375, 667}, UIInterfaceOrientation::Portrait);
  EXPECT_EQ(tables->tableView()->contentInset().top, -35);
}

TEST_F(UIViewControllerTest, APresentedScreenSlidesInAndCoversWhatIsBelow) {
  const auto card = make<Screen>();
  bool completed = false;
  root->presentViewControllerAnimatedCompletion(card, UIAnimated::Yes, [&] { completed = true; });
  EXPECT_EQ(card->view()->superview(), window.get());
  EXPECT_EQ(card->view()->animations().size(), 1U);
  EXPECT_EQ(card->presentingViewController(), navigation.get());
  EXPECT_EQ(navigation->presentedViewController(), card);
  settle();
  EXPECT_TRUE(completed);
  EXPECT_EQ(card->view()->frame(), (CGRect{0, 0, 375, 667}));
  EXPECT_TRUE(navigation->view()->isHidden());
  card->dismissViewControllerAnimatedCompletion(UIAnimated::Yes);
  EXPECT_FALSE(navigation->view()->isHidden());
  EXPECT_FALSE(navigation->presentedViewController());
  settle();
  EXPECT_EQ(card->view()->superview(), nullptr);
}

TEST_F(UIViewControllerTest, OneScreenIsPresentedAtATime) {
  const auto first = make<Screen>();
  const auto second = make<Screen>();
  root->presentViewControllerAnimatedCompletion(first, UIAnimated::No);
  root->presentViewControllerAnimatedCompletion(second, UIAnimated::No);
  settle();
  EXPECT_EQ(navigation->presentedViewController(), first);
  EXPECT_EQ(second->view()->superview(), nullptr);
}

TEST_F(UIViewControllerTest, AScreenThatIsPresentedAgainWhileItLeavesStays) {
  const auto card = make<Screen>();
  root->presentViewControllerAnimatedCompletion(card, UIAnimated::No);
  settle();
  card->dismissViewControllerAnimatedCompletion(UIAnimated::Yes);
  device.clock().advance(100ms);
  root->presentViewControllerAnimatedCompletion(card, UIAnimated::Yes);
  settle();
  EXPECT_EQ(card->view()->superview(), window.get());
  EXPECT_EQ(card->view()->frame().y, 0);
  EXPECT_TRUE(navigation->view()->isHidden());
}

TEST_F(UIViewControllerTest, DismissingTakesAwayWhatIsPresentedAboveToo) {
  const auto first = make<Screen>();
  const auto second = make<Screen>();
  root->presentViewControllerAnimatedCompletion(first, UIAnimated::No);
  settle();
  first->presentViewControllerAnimatedCompletion(second, UIAnimated::No);
  settle();
  root->dismissViewControllerAnimatedCompletion(UIAnimated::No);
  settle();
  EXPECT_EQ(first->view()->superview(), nullptr);
  EXPECT_EQ(second->view()->superview(), nullptr);
}

class PickerOwner : public UIViewController, public UIImagePickerControllerDelegate {
 public:
  UIImagePickerInfo picked;
  int cancelled = 0;
  void imagePickerControllerDidFinishPickingMediaWithInfo(UIImagePickerController&,
                                                          const UIImagePickerInfo& info) override {
    picked = info;
  }
  void imagePickerControllerDidCancel(UIImagePickerController&) override { ++cancelled; }
};

TEST(UIImagePickerController, GivesTheEditedImageOnceWhereEditingIsAllowed) {
  const auto owner = make<PickerOwner>();
  const auto picker = make<UIImagePickerController>();
  picker->setPickerDelegate(owner.get());
  picker->setAllowsEditing(true);
  const auto image = make<UIImage>();
  picker->pick(image);
  picker->cancel();
  EXPECT_EQ(owner->picked.at("UIImagePickerControllerEditedImage"), image);
  EXPECT_EQ(owner->cancelled, 0);
}

TEST(UIImagePickerController, TellsNobodyOnceItsDelegateIsGone) {
  const auto picker = make<UIImagePickerController>();
  {
    const auto owner = make<PickerOwner>();
    picker->setPickerDelegate(owner.get());
  }
  picker->pick(make<UIImage>());
  picker->cancel();
}

}  // namespace
}  // namespace quaverly
