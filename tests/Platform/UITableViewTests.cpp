#include "Platform/UIKit/UITableView.h"

#include <gtest/gtest.h>

#include <set>

#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UITableViewHeaderFooterView.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

/// A table's owner that notes what it is asked for.
class Source : public NSObject, public UITableViewDataSource, public UITableViewDelegate {
 public:
  size_t rows = 100'000;
  bool reuses = false;
  std::vector<size_t> asked;
  size_t counted = 0;
  size_t headersAsked = 0;
  std::vector<NSIndexPath> tapped;
  std::optional<double> header;
  std::optional<double> height;
  int scrolled = 0;

  size_t tableViewNumberOfRowsInSection(UITableView&, size_t) override {
    ++counted;
    return rows;
  }
  Ref<UITableViewCell> tableViewCellForRowAtIndexPath(UITableView& table, NSIndexPath path) override {
    asked.push_back(path.row);
    if (reuses) return table.dequeueReusableCellWithIdentifierForIndexPath("Cell", path);
    auto cell = make<UITableViewCell>();
    cell->initWithStyleReuseIdentifier(UITableViewCellStyle::Default, "Cell");
    return cell;
  }
  std::optional<double> tableViewHeightForHeaderInSection(UITableView&, size_t) override { return header; }
  Ref<UIView> tableViewViewForHeaderInSection(UITableView&, size_t) override {
    ++headersAsked;
    return header ? make<UIView>() : nullptr;
  }
  std::optional<double> tableViewHeightForRowAtIndexPath(UITableView&, NSIndexPath path) override {
    return height ? std::optional(*height + static_cast<double>(path.row)) : std::nullopt;
  }
  void tableViewDidSelectRowAtIndexPath(UITableView&, NSIndexPath path) override { tapped.push_back(path); }
  void scrollViewDidScroll(UIScrollView&) override { ++scrolled; }
};

class UITableViewTest : public testing::Test {
 protected:
  UITableViewTest() {
    table->setDataSource(source.get());
    table->setDelegate(source.get());
    table->setRowHeight(50);
  }
  ~UITableViewTest() override { UIApplication::sharedApplication().setKeyWindow(nullptr); }

  void show() {
    window->addSubview(table);
    window->makeKeyAndVisible();
    layOut();
  }
  void layOut() { UIApplication::sharedApplication().layoutIfNeeded(); }

  test::TestDevice device;
  Ref<UIWindow> window = make<UIWindow>(CGRect{0, 0, 375, 600});
  Ref<Source> source = make<Source>();
  Ref<UITableView> table = make<UITableView>(CGRect{0, 0, 375, 600}, UITableViewStyle::Plain);
};

TEST_F(UITableViewTest, AsksForTheRowsInSightAndForNoOthers) {
  show();
  EXPECT_EQ(source->asked, (std::vector<size_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
  EXPECT_EQ(table->contentSize().height, 50.0 * 100'000);
}

TEST_F(UITableViewTest, AsksForNoRowsBeforeItIsInAWindow) {
  table->reloadData();
  table->layoutIfNeeded();
  EXPECT_EQ(source->counted, 1U);
  EXPECT_TRUE(source->asked.empty());
}

TEST_F(UITableViewTest, ScrollingMakesAndDropsCellsAsTheyPass) {
  show();
  source->asked.clear();
  const auto first = table->cellForRowAtIndexPath({0, 0});
  table->scrollTo({0, 75});
  layOut();
  EXPECT_EQ(source->asked, (std::vector<size_t>{12, 13}));
  EXPECT_FALSE(table->cellForRowAtIndexPath({0, 0}));
  EXPECT_EQ(first->superview(), nullptr);
  EXPECT_EQ(table->cellForRowAtIndexPath({0, 13})->frame(), (CGRect{0, 650, 375, 50}));
  EXPECT_EQ(table->indexPathsForVisibleRows().size(), 13U);
}

TEST_F(UITableViewTest, CellsThatWereSeenComeBackFromTheQueue) {
  source->reuses = true;
  table->registerClassForCellReuseIdentifier<UITableViewCell>("Cell");
  show();
  std::set<UITableViewCell*> cells;
  for (const auto path : table->indexPathsForVisibleRows())
    cells.insert(table->cellForRowAtIndexPath(path).get());
  table->scrollTo({0, 600});
  layOut();
  size_t made = 0;
  for (const auto path : table->indexPathsForVisibleRows())
    made += !cells.contains(table->cellForRowAtIndexPath(path).get());
  table->scrollTo({0, 1200});
  layOut();
  size_t reused = 0;
  for (const auto path : table->indexPathsForVisibleRows())
    reused += cells.contains(table->cellForRowAtIndexPath(path).get());
  EXPECT_EQ(made, 12U);
  EXPECT_EQ(reused, 12U);
}

TEST_F(UITableViewTest, ReloadingAsksAgainForCountHeaderAndRows) {
  source->header = 30;
  show();
  const auto header = table->headerViewForSection(0);
  source->asked.clear();
  source->rows = 2;
  table->reloadData();
  EXPECT_EQ(table->numberOfRowsInSection(0), 2U);
  layOut();
  EXPECT_EQ(source->asked, (std::vector<size_t>{0, 1}));
  EXPECT_EQ(source->headersAsked, 2U);
  EXPECT_NE(table->headerViewForSection(0), header);
  EXPECT_EQ(table->contentSize().height, 130);
}

TEST_F(UITableViewTest, AHeaderOfThePlainStyleStaysInSight) {
  source->header = 30;
  show();
  EXPECT_EQ(table->headerViewForSection(0)->frame(), (CGRect{0, 0, 375, 30}));
  table->scrollTo({0, 500});
  layOut();
  EXPECT_EQ(table->headerViewForSection(0)->frame(), (CGRect{0, 500, 375, 30}));
  EXPECT_EQ(source->headersAsked, 1U);
}

TEST_F(UITableViewTest, RowsCanHaveHeightsOfTheirOwn) {
  source->height = 10;
  source->rows = 100;
  show();
  EXPECT_EQ(table->cellForRowAtIndexPath({0, 0})->frame(), (CGRect{0, 0, 375, 10}));
  EXPECT_EQ(table->cellForRowAtIndexPath({0, 3})->frame(), (CGRect{0, 33, 375, 13}));
  table->scrollTo({0, 33});
  layOut();
  EXPECT_FALSE(table->cellForRowAtIndexPath({0, 2}));
  EXPECT_TRUE(table->cellForRowAtIndexPath({0, 3}));
}

TEST_F(UITableViewTest, ATapSelectsAndTells) {
  show();
  table->tapRow({0, 3});
  EXPECT_EQ(source->tapped, (std::vector<NSIndexPath>{{0, 3}}));
  EXPECT_TRUE(table->cellForRowAtIndexPath({0, 3})->isSelected());
  table->deselectRowAtIndexPathAnimated({0, 3}, UIAnimated::No);
  EXPECT_FALSE(table->cellForRowAtIndexPath({0, 3})->isSelected());
  table->tapRow({0, 100'000});
  table->tapRow({7, 0});
  EXPECT_EQ(source->tapped.size(), 1U);
}

TEST_F(UITableViewTest, AnOffsetThatIsAlreadyThereTellsNobody) {
  show();
  table->setContentOffset({0, 100});
  EXPECT_EQ(source->scrolled, 1);
  table->setContentOffset({0, 100});
  EXPECT_EQ(source->scrolled, 1);
}

TEST_F(UITableViewTest, AChangeOfInsetBringsTheOffsetBack) {
  source->rows = 1;
  show();
  table->setContentInset({64, 0, 0, 0});
  EXPECT_EQ(table->contentOffset().y, -64);
  table->setContentInset({-35, 0, 64, 0});
  EXPECT_EQ(table->contentOffset().y, 35);
}

TEST_F(UITableViewTest, DraggingBeyondAnEndSpringsBack) {
  source->rows = 20;
  show();
  table->scrollTo({0, -80});
  EXPECT_EQ(table->contentOffset().y, 0);
  table->scrollTo({0, 5000});
  EXPECT_EQ(table->contentOffset().y, 400);
}

TEST_F(UITableViewTest, TurningKeepsTheHeaderThatIsThere) {
  source->header = 30;
  show();
  const auto header = table->headerViewForSection(0);
  table->setFrame({0, 0, 667, 375});
  layOut();
  EXPECT_EQ(table->headerViewForSection(0), header);
  EXPECT_EQ(header->frame().width, 667);
}

TEST_F(UITableViewTest, ATableWithoutSourceIsEmpty) {
  source = nullptr;
  show();
  table->reloadData();
  layOut();
  EXPECT_EQ(table->numberOfSections(), 0U);
}

}  // namespace
}  // namespace quaverly
