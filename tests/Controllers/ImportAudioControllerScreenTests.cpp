#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <set>

#include "Controllers/EditorFixture.h"
#include "Cores/CachesCore.h"

namespace quaverly {
namespace {

using testing::ElementsAre;

class BrowserScreen : public test::ScreenTest {
 protected:
  Ref<UITableViewCell> cell(const std::string& name) {
    for (const auto path : browser->tableView()->indexPathsForVisibleRows()) {
      const auto cell = browser->tableView()->cellForRowAtIndexPath(path);
      if (cell->textLabel()->text() == name) return cell;
    }
    return nullptr;
  }
  std::string backTitle() { return browser->temporaryBarButtonItem()->title().value_or("nothing"); }
  bool messageIsShown() { return browser->statusLabel()->superview() == browser->tableView().get(); }
};

TEST_F(BrowserScreen, TheEditorIsWrappedInALightBarAndCoversTheScreen) {
  const auto& editors = browser->importNavController();
  EXPECT_EQ(editors->topViewController(), browser->importController().get());
  EXPECT_EQ(editors->navigationBar()->barTintColor(), UIColor::colorWithWhiteAlpha(0.972549, 1));
  EXPECT_EQ(editors->modalTransitionStyle(), UIModalTransitionStyle::CoverVertical);
  EXPECT_EQ(editors->modalPresentationStyle(), UIModalPresentationStyle::FormSheet);
  EXPECT_FALSE(browser->importController()->isViewLoaded());
}

TEST_F(BrowserScreen, TheViewIsAWhitePlainTable) {
  settle();
  const auto table = browser->tableView();
  EXPECT_EQ(browser->view().get(), table.get());
  EXPECT_EQ(table->style(), UITableViewStyle::Plain);
  EXPECT_EQ(table->frame(), (CGRect{0, 0, 375, 667}));
  EXPECT_EQ(table->backgroundColor(), UIColor::whiteColor());
  EXPECT_EQ(host->view()->backgroundColor(), (CGColor{0.937255, 0.937255, 0.956863, 1}));
  EXPECT_EQ(table->separatorStyle(), UITableViewCellSeparatorStyle::SingleLine);
  EXPECT_EQ(table->autoresizingMask(), 18U);
  EXPECT_EQ(table->rowHeight(), 50);
  ASSERT_TRUE(table->tableFooterView());
  EXPECT_EQ(table->tableFooterView()->frame().size(), CGSize());
  EXPECT_EQ(table->dataSource(), browser.get());
  EXPECT_EQ(table->delegate(), browser.get());
}

TEST_F(BrowserScreen, TheTitleStandsBesideTheBarUntilTheBarPlacesIt) {
  window->setRootViewController(host);
  const auto& container = browser->navigationItem()->titleView();
  const auto& title = browser->titleLabel();
  const auto& subTitle = browser->subTitleLabel();
  EXPECT_EQ(title->superview(), container.get());
  EXPECT_EQ(title->text(), "Quaverly");
  EXPECT_EQ(title->font(), UIFont::fontWithNameSize("Arial", 20));
  EXPECT_EQ(title->textColor(), UIColor::colorWithWhiteAlpha(0.196078, 1));
  EXPECT_EQ(title->frame().y, 7);
  EXPECT_EQ(title->frame().height, 20);
  EXPECT_EQ(subTitle->text(), "/var/mobile/Media");
  EXPECT_EQ(subTitle->font(), UIFont::fontWithNameSize("Arial", 12));
  EXPECT_EQ(subTitle->textColor(), UIColor::grayColor());
  EXPECT_EQ(subTitle->frame().y, 25);
  EXPECT_EQ(subTitle->frame().height, 14);
  for (const auto& label : {title, subTitle}) {
    EXPECT_EQ(label->autoresizingMask(), 2U);
    EXPECT_EQ(label->textAlignment(), NSTextAlignment::Center);
    EXPECT_EQ(label->backgroundColor(), UIColor::clearColor());
    EXPECT_EQ(label->frame().width, container->bounds().width);
  }
}

TEST_F(BrowserScreen, TheTitleContainerBeginsWhereTheBarEnds) {
  // Loaded inside its navigation controller, and not yet placed by the bar.
  host->view();
  browser->loadView();
  const auto& container = browser->navigationItem()->titleView();
  EXPECT_EQ(container->frame(), (CGRect{375, 0, 375, 44}));
  EXPECT_EQ(browser->titleLabel()->frame(), (CGRect{0, 7, 375, 20}));
  EXPECT_EQ(browser->subTitleLabel()->frame(), (CGRect{0, 25, 375, 14}));
}

TEST_F(BrowserScreen, AnEmptyFolderSaysSoAboveTheMiddle) {
  settle();
  const auto& label = browser->statusLabel();
  EXPECT_TRUE(messageIsShown());
  EXPECT_EQ(label->text(), "NO_FILES");  // this bundle has no tables
  EXPECT_EQ(label->font(), UIFont::fontWithNameSize("Arial", 24));
  EXPECT_EQ(label->textColor(), UIColor::grayColor());
  EXPECT_EQ(label->textAlignment(), NSTextAlignment::Center);
  EXPECT_EQ(label->center(), (CGPoint{187.5, 333.5 - 50}));
  EXPECT_EQ(label->bounds().size(), label->sizeThatFits({375, 100}));
}

TEST_F(BrowserScreen, TheMessageComesAndGoesWithTheRowCount) {
  device.media().write("folder/a.mp3", "x");
  device.media().makeFolder("empty");
  settle();
  EXPECT_FALSE(messageIsShown());
  tapRow("empty");
  EXPECT_TRUE(messageIsShown());
  browser->backBrowser();
  EXPECT_FALSE(messageIsShown());
  EXPECT_EQ(browser->tableViewNumberOfRowsInSection(*browser->tableView(), 0), 2U);
  EXPECT_EQ(browser->numberOfSectionsInTableView(*browser->tableView()), 1U);
}

TEST_F(BrowserScreen, AFolderIsARowWithItsDate) {
  device.media().makeFolder("Music");
  settle();
  const auto row = cell("Music");
  ASSERT_TRUE(row);
  EXPECT_EQ(row->style(), UITableViewCellStyle::Subtitle);
  EXPECT_EQ(row->reuseIdentifier(), "FileCell");
  EXPECT_EQ(row->contentView()->backgroundColor(), UIColor::whiteColor());
  EXPECT_EQ(row->detailTextLabel()->text(), browser->fileItems()[0].date());
  EXPECT_EQ(row->selectionStyle(), UITableViewCellSelectionStyle::Default);
  const auto text = row->textLabel();
  EXPECT_EQ(text->textColor(), UIColor::colorWithWhiteAlpha(0.188235, 1));
  EXPECT_EQ(text->highlightedTextColor(), UIColor::grayColor());
  EXPECT_EQ(text->font(), UIFont::fontWithNameSize("Arial", 18));
  EXPECT_EQ(text->textAlignment(), NSTextAlignment::Left);
  EXPECT_EQ(text->backgroundColor(), UIColor::clearColor());
  const auto detail = row->detailTextLabel();
  EXPECT_EQ(detail->textColor(), UIColor::grayColor());
  EXPECT_EQ(detail->highlightedTextColor(), UIColor::grayColor());
  EXPECT_EQ(detail->font(), UIFont::fontWithNameSize("Arial", 11));
  EXPECT_EQ(detail->textAlignment(), NSTextAlignment::Left);
}

TEST_F(BrowserScreen, AFileIsARowWithItsSizeAndDate) {
  device.media().write("song.mp3", std::string(1'500'000, 'x'));
  settle();
  const auto row = cell("song.mp3");
  ASSERT_TRUE(row);
  EXPECT_EQ(row->detailTextLabel()->text(), "1.5 MB " + browser->fileItems()[0].date().value());
  EXPECT_EQ(row->textLabel()->textColor(), UIColor::colorWithWhiteAlpha(0.188235, 1));
}

TEST_F(BrowserScreen, AFileThatCannotBeImportedIsGrayAndIsNotMarkedWhenTapped) {
  device.media().write("song.MP3", "x");
  settle();
  const auto row = cell("song.MP3");
  ASSERT_TRUE(row);
  EXPECT_EQ(row->textLabel()->textColor(), UIColor::grayColor());
  EXPECT_EQ(row->selectionStyle(), UITableViewCellSelectionStyle::None);
  tapRow("song.MP3");
  settle();
  EXPECT_FALSE(host->presentedViewController());
  EXPECT_FALSE(browser->tableView()->indexPathForSelectedRow());
}

TEST_F(BrowserScreen, EachKindHasItsIcon) {
  const std::string png(test::square(255)->encodedForDisplay()->data.text());
  device.bundle().write("images/folder_icon.png", png);
  device.bundle().write("images/sound_file_icon.png", png);
  device.bundle().write("images/page_white_icon.png", png);
  device.media().makeFolder("folder");
  device.media().write("song.mp3", "x");
  device.media().write("text.txt", "x");
  settle();
  const auto icon = [](const char* name) { return CachesCore::cachedImageWithContentsOfFileName(name); };
  EXPECT_TRUE(icon("folder_icon"));
  EXPECT_EQ(cell("folder")->imageView()->image(), icon("folder_icon"));
  EXPECT_EQ(cell("song.mp3")->imageView()->image(), icon("sound_file_icon"));
  EXPECT_EQ(cell("text.txt")->imageView()->image(), icon("page_white_icon"));
}

TEST_F(BrowserScreen, NoCellIsEverSeenTwice) {
  for (int i = 0; i < 60; ++i) device.media().write("file" + std::to_string(i), "x");
  settle();
  std::vector<Ref<UITableViewCell>> seen;  // kept, so that no other is made in its place
  std::set<UITableViewCell*> distinct;
  for (const double offset : {0.0, 1000.0, 0.0, 1000.0}) {
    browser->tableView()->scrollTo({0, offset});
    settle();
    for (const auto path : browser->tableView()->indexPathsForVisibleRows()) {
      seen.push_back(browser->tableView()->cellForRowAtIndexPath(path));
      distinct.insert(seen.back().get());
    }
  }
  EXPECT_GT(seen.size(), 40U);
  EXPECT_EQ(distinct.size(), seen.size());
}

TEST_F(BrowserScreen, ATapOpensAFolderAndTheButtonGoesBack) {
  device.media().write("Music/a.mp3", "x");
  settle();
  tapRow("Music");
  settle();
  EXPECT_EQ(browser->openedFolder()->string(), "/var/mobile/Media/Music");
  EXPECT_EQ(browser->subTitleLabel()->text(), "/var/mobile/Media/Music");
  EXPECT_EQ(backTitle(), "/Media");
  EXPECT_TRUE(cell("a.mp3"));
  host->navigationBar()->rightButton()->sendActionsForControlEvents(UIControlEvents::TouchUpInside);
  settle();
  EXPECT_EQ(browser->openedFolder()->string(), "/var/mobile/Media");
  EXPECT_EQ(backTitle(), "/mobile");
  EXPECT_EQ(host->navigationBar()->rightButton()->title(), "/mobile");
}

TEST_F(BrowserScreen, GoingBackEndsAtTheRoot) {
  settle();
  std::vector<std::string> titles;
  for (int i = 0; i < 5; ++i) {
    browser->backBrowser();
    titles.push_back(browser->openedFolder()->string() + " " + backTitle());
  }
  EXPECT_THAT(titles, ElementsAre("/var/mobile /var", "/var /", "/ ", "/ ", "/ "));
  settle();
  EXPECT_TRUE(host->navigationBar()->rightButton()->isHidden());
}

TEST_F(BrowserScreen, AnUnreadableFolderShowsItsPathAndTheMessage) {
  device.media().makeFolder("gone");
  settle();
  std::filesystem::remove(device.media() / "gone");
  tapRow("gone");
  EXPECT_EQ(browser->subTitleLabel()->text(), "/var/mobile/Media/gone");
  EXPECT_TRUE(messageIsShown());
}

TEST_F(BrowserScreen, ASongIsHandedToTheEditorWithItsEscapedPath) {
  device.media().write("my song.mp3", "no tags at all");
  settle();
  tapRow("my song.mp3");
  settle();
  EXPECT_EQ(host->presentedViewController().get(), browser->importNavController().get());
  EXPECT_EQ(editor().localfileRequest()->URL().absoluteString(), "/var/mobile/Media/my%20song.mp3");
  EXPECT_EQ(editor().currentSongItem(), iTunesSongItem());
  EXPECT_FALSE(browser->tableView()->indexPathForSelectedRow());
}

/// From now on this process can write only tiny files, as on a disk that is full.
void fillDisk() {
  signal(SIGXFSZ, SIG_IGN);
  const rlimit little{200, 200};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &little), 0);
}

TEST_F(BrowserScreen, ADiskThatFillsWhileACoverIsStagedLeavesNothingAndTheEditorOpens) {
  device.media().write("song.mp3", test::contentsOf(QUAVERLY_SOURCE_DIR "/samples/lantern.mp3"));
  settle();
  fillDisk();
  tapRow("song.mp3");
  settle();
  EXPECT_EQ(host->presentedViewController().get(), browser->importNavController().get());
  EXPECT_EQ(editor().currentSongItem().title(), "Lantern Walk");
  EXPECT_TRUE(std::filesystem::is_empty(device.temporary() / "tmp"));
  EXPECT_FALSE(editor().imgView()->image());
}

TEST_F(BrowserScreen, EachLoadedViewListsTheStartFolderAfresh) {
  settle();
  browser->backBrowser();
  browser->loadView();
  EXPECT_EQ(browser->openedFolder()->string(), "/var/mobile/Media");
}

TEST_F(BrowserScreen, AFolderOfManyAsksForTheRowsInSightAlone) {
  for (int i = 0; i < 3000; ++i) device.media().write("f" + std::to_string(i), "");
  settle();
  EXPECT_EQ(browser->fileItems().size(), 3000U);
  EXPECT_LE(browser->tableView()->indexPathsForVisibleRows().size(), 15U);
}

}  // namespace
}  // namespace quaverly
