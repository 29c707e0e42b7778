#include "Controllers/QuaverlySettingsController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cells/QVTitleCell.h"
#include "Controllers/ContactMeViewController.h"
#include "Cores/CachesCore.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/Social/SLComposeViewController.h"
#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UINavigationController.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct SomeLinks : UILinkOpener {
  bool canOpenURL(const NSURL&) override { return hasApplication; }
  void openURL(const NSURL& url) override { opened.push_back(url.absoluteString()); }
  bool hasApplication = false;
  std::vector<std::string> opened;
};

struct SomeMailService : MFMailService {
  bool canSendMail() const override { return can; }
  bool can = true;
};

class RootPane : public testing::Test {
 protected:
  RootPane() {
    setLogSink([this](std::string_view line) { _log.emplace_back(line); });
    _device->mounts.mount(_device.bundlePath, QUAVERLY_SOURCE_DIR "/resources/QuaverlySettings.bundle",
                          MountTable::Access::readOnly);
    UIApplication::sharedApplication().setLinkOpener(&_links);
    _pane->setBundle(NSBundle::bundleWithPath(_device.bundlePath));
    EXPECT_EQ(_pane->init(), _pane.get());
    const auto window = make<UIWindow>(CGRect{0, 0, 375, 667});
    window->setRootViewController(make<UINavigationController>(_pane));
    window->makeKeyAndVisible();
    UIApplication::sharedApplication().layoutIfNeeded();
  }
  ~RootPane() override {
    UIApplication::sharedApplication().setKeyWindow(nullptr);
    UIApplication::sharedApplication().setLinkOpener(nullptr);
    MFMailComposeViewController::registerService(nullptr);
  }

  static const Ref<UIViewController>& presented() {
    return UIApplication::sharedApplication().keyWindow()->rootViewController()->presentedViewController();
  }

  std::vector<std::string> _log;
  test::TestDevice _device;
  SomeLinks _links;
  Ref<QuaverlySettingsController> _pane = make<QuaverlySettingsController>();
};

TEST_F(RootPane, LoadsItsRowsOnceAndAllOfThem) {
  const auto rows = _pane->specifiers();
  EXPECT_EQ(_pane->specifiers(), rows);
  std::vector<std::string> names;
  for (const auto& row : *rows)
    if (row->cellType() != PSCellType::group) names.push_back(row->name());
  EXPECT_THAT(names, ElementsAre("", "Import audio", "Engines", "Follow on Twitter", "Donate",
                                 "Visit the repository", "Write to support"));
  EXPECT_THAT(_log, IsEmpty());
}

TEST_F(RootPane, ItsButtonsDoWhatTheySay) {
  for (const auto& row : *_pane->specifiers())
    if (row->buttonAction()) row->buttonAction()->send();
  EXPECT_THAT(_links.opened,
              ElementsAre("https://twitter.example/Tolmarin", "https://tolmarin.example/donate",
                          "https://repo.tolmarin.example/"));
}

TEST_F(RootPane, ItsBarShowsTheHeartAndTheMakersIcon) {
  const auto& heart = _pane->navigationItem()->rightBarButtonItem();
  EXPECT_EQ(heart->style(), UIBarButtonItemStyle::Plain);
  EXPECT_TRUE(heart->image());
  EXPECT_EQ(heart->image(), CachesCore::cachedImageWithContentsOfFileName("heart_icon"));
  const auto* title = dynamic_cast<const UIImageView*>(_pane->navigationItem()->titleView().get());
  ASSERT_TRUE(title);
  EXPECT_TRUE(title->image());
  EXPECT_EQ(title->image(), CachesCore::cachedImageWithContentsOfFileName("tolmarin_icon"));
}

TEST_F(RootPane, WithoutItsImagesItHasTheButtonAndTheTitleAllTheSame) {
  _device->mounts.unmount(_device.bundlePath);
  CachesCore::ResetCaches();
  const auto pane = make<QuaverlySettingsController>();
  ASSERT_EQ(pane->init(), pane.get());
  EXPECT_FALSE(pane->navigationItem()->rightBarButtonItem()->image());
  EXPECT_TRUE(pane->navigationItem()->titleView());
}

TEST_F(RootPane, FollowsInTheApplicationWhereThereIsOne) {
  _links.hasApplication = true;
  _pane->followTwitter();
  EXPECT_THAT(_links.opened, ElementsAre("twitter:///user?screen_name=Tolmarin"));
}

TEST_F(RootPane, TheHeartSharesFromTheWindowsRoot) {
  ASSERT_TRUE(_pane->navigationItem()->rightBarButtonItem());
  _pane->navigationItem()->rightBarButtonItem()->sendAction();
  const auto* sheet = dynamic_cast<const SLComposeViewController*>(presented().get());
  ASSERT_TRUE(sheet);
  EXPECT_EQ(sheet->serviceType(), SLServiceTypeTwitter);
  EXPECT_EQ(sheet->initialText(),
            "#Quaverly by @Tolmarin is the best way to download music directly from your iDevice!\n"
            "https://repo.tolmarin.example/deb");
}

TEST_F(RootPane, AShareTextOf141CharactersIsCutTo140) {
  const size_t fixed = NSStringLength(QuaverlySettingsController::shareText(""));
  const std::string fits(140 - fixed, 'x');
  EXPECT_TRUE(QuaverlySettingsController::shareText(fits).ends_with(fits));
  EXPECT_EQ(QuaverlySettingsController::shareText(fits + "y"), QuaverlySettingsController::shareText(fits));
  const auto wide = QuaverlySettingsController::shareText(std::string(139 - fixed, 'x') + "🎵");
  EXPECT_EQ(NSStringLength(wide), 139u);
}

TEST_F(RootPane, WithoutAWindowThereIsNothingToShareFrom) {
  UIApplication::sharedApplication().setKeyWindow(nullptr);
  _pane->shareTwitter();
  EXPECT_FALSE(_pane->presentedViewController());
}

TEST_F(RootPane, AMailIsShownWhereMailCanBeSent) {
  _pane->showMailDialog();
  EXPECT_FALSE(presented());
  SomeMailService service;
  MFMailComposeViewController::registerService(&service);
  service.can = false;
  _pane->showMailDialog();
  EXPECT_FALSE(presented());
  service.can = true;
  _pane->showMailDialog();
  EXPECT_TRUE(dynamic_cast<ContactMeViewController*>(presented().get()));
}

TEST_F(RootPane, EveryOutcomeOfAMailClosesIt) {
  SomeMailService service;
  MFMailComposeViewController::registerService(&service);
  using enum MFMailComposeResult;
  for (const auto result : {cancelled, saved, sent, failed}) {
    _pane->showMailDialog();
    const Ref<ContactMeViewController> mail(dynamic_cast<ContactMeViewController*>(presented().get()));
    ASSERT_TRUE(mail);
    mail->finishWithResultError(result, nullptr);
    _device.clock().advance(std::chrono::seconds(2));
    EXPECT_FALSE(presented());
  }
}

TEST_F(RootPane, ATapOpensTheEnginesUnderTheRowsName) {
  const Ref<UITableView> table(dynamic_cast<UITableView*>(_pane->view().get()));
  ASSERT_TRUE(table);
  table->tapRow(NSIndexPath::indexPathForRowInSection(1, 1));
  EXPECT_EQ(_pane->navigationController()->topViewController()->title(), "Engines");
}

TEST_F(RootPane, TheFirstRowIsTheTitleAndItsHeight) {
  const Ref<UITableView> table(dynamic_cast<UITableView*>(_pane->view().get()));
  const auto cell = table->cellForRowAtIndexPath({0, 0});
  ASSERT_TRUE(dynamic_cast<QVTitleCell*>(cell.get()));
  EXPECT_DOUBLE_EQ(cell->frame().height, 120);
}

}  // namespace
}  // namespace quaverly
