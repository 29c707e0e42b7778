#include "Cells/QVTitleCell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cores/CachesCore.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using testing::ElementsAre;

class TitleCell : public testing::Test {
 protected:
  TitleCell() {
    _device->mounts.mount(_device.bundlePath, QUAVERLY_SOURCE_DIR "/resources/QuaverlySettings.bundle",
                          MountTable::Access::readOnly);
  }

  void init() { ASSERT_EQ(_cell->initWithSpecifier(_specifier), _cell.get()); }

  static void expectSizeOfItsText(const UILabel& label) {
    EXPECT_EQ(label.frame().size(), label.sizeThatFits({}));
  }

  test::TestDevice _device;
  Ref<PSSpecifier> _specifier = make<PSSpecifier>("", PSCellType::staticText);
  Ref<QVTitleCell> _cell = make<QVTitleCell>();
};

TEST_F(TitleCell, IsACellOfTheDefaultStyleForItsSpecifier) {
  init();
  EXPECT_EQ(_cell->style(), UITableViewCellStyle::Default);
  EXPECT_EQ(_cell->reuseIdentifier(), "QVTitleCell");
  EXPECT_EQ(_cell->specifier(), _specifier);
  EXPECT_EQ(_cell->backgroundColor(), UIColor::clearColor());
}

TEST_F(TitleCell, ItsHeightIsTheSameForEveryWidth) {
  for (const double width : {0.0, 320.0, 1024.0}) EXPECT_EQ(_cell->preferredHeightForWidth(width), 120);
}

TEST_F(TitleCell, ShowsTheNameInLargeThinLetters) {
  init();
  const auto& label = *_cell->quaverlyLabel();
  EXPECT_EQ(label.text(), "Quaverly");
  EXPECT_EQ(label.textColor(), UIColor::blackColor());
  EXPECT_EQ(label.backgroundColor(), UIColor::clearColor());
  EXPECT_EQ(label.textAlignment(), NSTextAlignment::Center);
  EXPECT_EQ(label.font(), UIFont::fontWithNameSize("HelveticaNeue-UltraLight", 40));
  EXPECT_EQ(label.frame().origin(), (CGPoint{120, 30}));
  expectSizeOfItsText(label);
}

TEST_F(TitleCell, ShowsTheMakerInGrey) {
  init();
  const auto& label = *_cell->tolmarinLabel();
  EXPECT_EQ(label.text(), "by Ferrowin (Tolmarin)");
  EXPECT_EQ(label.textColor(), UIColor::grayColor());
  EXPECT_EQ(label.backgroundColor(), UIColor::clearColor());
  EXPECT_EQ(label.textAlignment(), NSTextAlignment::Left);
  EXPECT_EQ(label.font(), UIFont::fontWithNameSize("HelveticaNeue", 15));
  EXPECT_EQ(label.frame().origin(), (CGPoint{120, 65}));
  expectSizeOfItsText(label);
}

TEST_F(TitleCell, ShowsTheIconAsAStencilLeftOfTheLabels) {
  init();
  const auto& icon = *_cell->quaverlyIconView();
  ASSERT_TRUE(icon.image());
  EXPECT_EQ(icon.image()->renderingMode(), UIImageRenderingMode::alwaysTemplate);
  const CGSize size = icon.image()->size();
  EXPECT_EQ(icon.frame(), (CGRect{110 - size.width, 20, size.width, size.height}));
  EXPECT_EQ(CachesCore::cachedImageWithContentsOfFileName("quaverly_icon")->renderingMode(),
            UIImageRenderingMode::automatic);
}

TEST_F(TitleCell, ItsViewsLieInTheirOrderWithTheIconOnTop) {
  init();
  std::vector<Ref<UIView>> own = _cell->subviews();
  own.erase(own.begin(), own.end() - 3);
  EXPECT_THAT(own, ElementsAre(Ref<UIView>(_cell->quaverlyLabel()), Ref<UIView>(_cell->tolmarinLabel()),
                               Ref<UIView>(_cell->quaverlyIconView())));
}

TEST_F(TitleCell, IsLaidOutOnceFromItsPlaceAtThatMoment) {
  _cell->setFrame({10, 0, 400, 44});
  init();
  _cell->setFrame({0, 0, 1024, 120});
  _cell->layoutIfNeeded();
  EXPECT_DOUBLE_EQ(_cell->quaverlyLabel()->frame().x, 170);
  EXPECT_DOUBLE_EQ(_cell->tolmarinLabel()->frame().x, 170);
  EXPECT_DOUBLE_EQ(_cell->quaverlyIconView()->frame().maxX(), 160);
}

TEST_F(TitleCell, WithoutItsIconItShowsTheRest) {
  test::TestDevice without;
  CachesCore::ResetCaches();
  init();
  EXPECT_FALSE(_cell->quaverlyIconView()->image());
  EXPECT_EQ(_cell->quaverlyIconView()->frame(), (CGRect{110, 20, 0, 0}));
  EXPECT_EQ(_cell->quaverlyLabel()->text(), "Quaverly");
}

}  // namespace
}  // namespace quaverly
