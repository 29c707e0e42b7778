#include "Controllers/CustomImportViewController.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "Controllers/EditorFixture.h"
#include "Cores/CachesCore.h"
#include "Cores/StatusCore.h"
#include "Externals/HTTPServer/HTTPResponseHandler.h"
#include "Externals/HTTPServer/HTTPServer.h"
#include "Platform/Foundation/NSLog.h"
#include "Support/NetworkNamespace.h"

namespace quaverly {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* pickedURL =
    "file://localhost/private/var/mobile/Media/Quaverly/tmp/current_album_image.png";
constexpr CGColor borderColor{0.9098, 0.9098, 0.9098, 0.5};

class Editor : public test::ScreenTest {
 protected:
  void SetUp() override {
    test::enterOwnNetwork();  // the editor starts the server on its port
    settle();
  }

  iTunesSongItem song() const {
    iTunesSongItem song;
    song.setTitle("Lantern Walk");
    song.setArtist("The Band");
    song.setAlbum("First Steps");
    song.setGenre("Folk");
    song.setReleaseYear("2026");
    song.setIndexInCollection("3");
    song.setDuration("4:00");
    song.setID("7");
    return song;
  }
  NSURLRequest request(const char* path = "/var/mobile/Media/a.mp3") const {
    return NSURLRequest(*NSURL::URLWithString(path));
  }
  void show(const iTunesSongItem& shown) {
    editor().showImportForSongWithDownloadRequest(shown, request());
    browser->presentViewControllerAnimatedCompletion(browser->importNavController(), UIAnimated::Yes);
    settle();
  }
  UIButton& camera() { return dynamic_cast<UIButton&>(*editor().imgView()->subviews().at(0)); }
  Ref<UIImagePickerController> picker() {
    return Ref<UIImagePickerController>(dynamic_cast<UIImagePickerController*>(
        browser->importNavController()->presentedViewController().get()));
  }
  std::string staged() { return test::contentsOf(device.temporary() / "tmp/current_album_image.png"); }
};

TEST_F(Editor, KeepsACopyOfTheSongAndOfTheRequest) {
  const auto given = song();
  editor().showImportForSongWithDownloadRequest(given, request());
  EXPECT_EQ(editor().currentSongItem(), given);
  EXPECT_EQ(editor().localfileRequest()->URL().absoluteString(), "/var/mobile/Media/a.mp3");
}

TEST_F(Editor, TheTableIsPreparedOnce) {
  show(song());
  const auto table = editor().tableView();
  EXPECT_EQ(table->separatorStyle(), UITableViewCellSeparatorStyle::SingleLine);
  EXPECT_EQ(table->separatorColor(), UIColor::colorWithWhiteAlpha(0.9098, 1));
  EXPECT_FALSE(table->showsVerticalScrollIndicator());
  EXPECT_EQ(table->backgroundColor(), UIColor::whiteColor());
  EXPECT_EQ(table->rowHeight(), 45);
  EXPECT_EQ(table->tableFooterView()->frame(), CGRect());
  EXPECT_EQ(editor().numberOfSectionsInTableView(*table), 1U);
  EXPECT_EQ(editor().tableViewNumberOfRowsInSection(*table, 5), 1U);
  EXPECT_EQ(editor().tableViewHeightForHeaderInSection(*table, 5), 199);
}

TEST_F(Editor, TheBarIsTransparentWithCancelAndImport) {
  show(song());
  const auto& item = editor().navigationItem();
  EXPECT_EQ(item->leftBarButtonItem()->systemItem(), UIBarButtonSystemItem::Cancel);
  EXPECT_EQ(item->rightBarButtonItem()->title(), "IMPORT");  // this bundle has no tables
  EXPECT_EQ(item->rightBarButtonItem()->style(), UIBarButtonItemStyle::Plain);
  const auto* const title = dynamic_cast<UILabel*>(item->titleView().get());
  ASSERT_TRUE(title);
  EXPECT_FALSE(title->text());
  const auto& bar = browser->importNavController()->navigationBar();
  EXPECT_EQ(bar->tintColor(), UIColor::whiteColor());
  ASSERT_TRUE(bar->backgroundImageForBarMetrics(UIBarMetrics::Default));
  EXPECT_EQ(bar->backgroundImageForBarMetrics(UIBarMetrics::Default)->size(), CGSize());
  ASSERT_TRUE(bar->shadowImage());
  EXPECT_EQ(bar->shadowImage()->size(), CGSize());
}

TEST_F(Editor, LoadingTheViewStartsTheServerAndRegistersTheFileResponseOnceMore) {
  const auto registered = HTTPResponseHandler::registeredHandlers().size();
  EXPECT_EQ(HTTPServer::sharedHTTPServer()->state(), HTTPServerStateIdle);
  editor().view();
  EXPECT_EQ(HTTPServer::sharedHTTPServer()->state(), HTTPServerStateRunning);
  ASSERT_EQ(HTTPResponseHandler::registeredHandlers().size(), registered + 1);
  EXPECT_EQ(HTTPResponseHandler::registeredHandlers().front()->name(), "QVFileResponse");
}

TEST_F(Editor, TheHeaderShowsTheCoverTwiceBehindTheFields) {
  show(song());
  const auto& header = editor().headerView();
  EXPECT_EQ(header->frame(), (CGRect{0, 0, 375, 199}));
  EXPECT_EQ(header->autoresizingMask(), 18U);
  EXPECT_EQ(header->backgroundColor(), UIColor::colorWithWhiteAlpha(0.2667, 1));
  EXPECT_TRUE(header->clipsToBounds());
  EXPECT_EQ(header->contentMode(), UIViewContentMode::ScaleAspectFill);
  EXPECT_TRUE(header->isUserInteractionEnabled());
  ASSERT_EQ(header->subviews().size(), 6U);
  const auto& dimming = header->subviews()[0];
  EXPECT_EQ(dimming->frame(), (CGRect{0, 0, 375, 199}));
  EXPECT_EQ(dimming->backgroundColor(), (CGColor{0, 0, 0, 0.2}));
  EXPECT_EQ(dimming->autoresizingMask(), 18U);
  EXPECT_EQ(header->subviews()[1].get(), editor().imgView().get());
  EXPECT_EQ(header->subviews()[2].get(), editor().albumLabelHeader().get());
  EXPECT_EQ(header->subviews()[3].get(), editor().artistLabelHeader().get());
  EXPECT_EQ(header->subviews()[4].get(), editor().genreLabelHeader().get());
  EXPECT_EQ(header->subviews()[5].get(), editor().yearLabelHeader().get());
  const auto& square = editor().imgView();
  EXPECT_EQ(square->frame(), (CGRect{12, 79, 100, 100}));
  EXPECT_EQ(square->backgroundColor(), UIColor::colorWithWhiteAlpha(0.3451, 1));
  EXPECT_EQ(square->autoresizingMask(), 32U);
  EXPECT_TRUE(square->isUserInteractionEnabled());
}

TEST_F(Editor, TheCameraIsARoundButtonInTheCover) {
  show(song());
  EXPECT_EQ(camera().frame(), (CGRect{30, 50, 40, 40}));
  EXPECT_EQ(camera().buttonType(), UIButtonType::Custom);
  EXPECT_TRUE(camera().clipsToBounds());
  EXPECT_EQ(camera().layer()->cornerRadius(), 20);
  EXPECT_EQ(camera().layer()->backgroundColor(), UIColor::colorWithWhiteAlpha(0.7843, 1));
}

TEST_F(Editor, TheCameraShowsItsIcon) {
  device.bundle().write("images/camera_icon.png",
                        std::string(test::square(255)->encodedForDisplay()->data.text()));
  show(song());
  ASSERT_TRUE(camera().image());
  EXPECT_EQ(camera().image(), CachesCore::cachedImageWithContentsOfFileName("camera_icon"));
}

TEST_F(Editor, TheCoverOfASongIsShownSharpAndBlurredByTwelve) {
  const std::string cover(test::square(90)->encodedForDisplay()->data.text());
  device.temporary().write("tmp/cover.jpg", cover);
  auto shown = song();
  shown.setArtworkLow("file://localhost/private/var/mobile/Media/Quaverly/tmp/low.jpg");
  shown.setArtworkMedium("file://localhost/private/var/mobile/Media/Quaverly/tmp/cover.jpg");
  shown.setArtworkHigh("file://localhost/private/var/mobile/Media/Quaverly/tmp/high.jpg");
  show(shown);
  ASSERT_TRUE(waitFor([&] { return editor().imgView()->image() && editor().headerView()->image(); }));
  const std::string url = *shown.artworkMedium();
  EXPECT_THAT(CachesCore::CachedImages()->allKeys(), testing::IsSupersetOf({url, url + "-blur-12"}));
  // Two workers load the cover, and the last one's is stored: it need not be the one that is shown.
  EXPECT_EQ(editor().imgView()->image()->encodedForDisplay()->data.text(), cover);
  EXPECT_EQ(editor().headerView()->image(), CachesCore::CachedImages()->objectForKey(url + "-blur-12"));
  editor().import();
  EXPECT_THAT(service.lines(0), testing::IsSupersetOf({"thumbnailImageURL <" + url + ">",
                                                       "fullSizeImageURL <" + *shown.artworkHigh() + ">"}));
}

TEST_F(Editor, TheHeaderFieldsHaveTheirPlacesAndLooks) {
  show(song());
  struct Look {
    Ref<UITextField> field;
    CGRect frame;
    double size;
    UIColor color;
    UIKeyboardType keyboard;
    const char* text;
  };
  const auto gray = UIColor::colorWithWhiteAlpha(0.7843, 1);
  const auto white = UIColor::whiteColor();
  const auto usual = UIKeyboardType::Default;
  for (const auto& look :
       {Look{editor().albumLabelHeader(), {125, 84, 240, 30}, 20, white, usual, "First Steps"},
        Look{editor().artistLabelHeader(), {125, 115, 240, 20}, 13, white, usual, "The Band"},
        Look{editor().genreLabelHeader(), {125, 136, 240, 20}, 12, gray, usual, "Folk"},
        Look{editor().yearLabelHeader(), {125, 157, 240, 20}, 12, gray, UIKeyboardType::NumberPad, "2026"}}) {
    SCOPED_TRACE(look.text);
    EXPECT_EQ(look.field->frame(), look.frame);
    EXPECT_EQ(look.field->font(), UIFont::fontWithNameSize("Arial", look.size));
    EXPECT_EQ(look.field->textColor(), look.color);
    EXPECT_EQ(look.field->keyboardType(), look.keyboard);
    EXPECT_EQ(look.field->text(), look.text);
    EXPECT_EQ(look.field->textAlignment(), NSTextAlignment::Left);
    EXPECT_EQ(look.field->autoresizingMask(), 34U);
    EXPECT_EQ(look.field->layer()->borderColor(), borderColor);
    EXPECT_EQ(look.field->layer()->borderWidth(), 0.8);
    EXPECT_FALSE(look.field->placeholder());
  }
}

TEST_F(Editor, TheRowHoldsTrackNumberAndTitle) {
  show(song());
  const auto& cell = editor().currentCell();
  ASSERT_TRUE(cell);
  EXPECT_EQ(cell->frame(), (CGRect{0, 199, 375, 45}));
  EXPECT_EQ(cell->backgroundColor(), UIColor::clearColor());
  EXPECT_EQ(cell->selectionStyle(), UITableViewCellSelectionStyle::None);
  const auto& title = cell->titleLabel();
  const auto& index = cell->indexLabel();
  EXPECT_EQ(title->text(), "Lantern Walk");
  EXPECT_EQ(index->text(), "3");
  EXPECT_EQ(title->frame(), (CGRect{50, 11, 305, 25}));
  EXPECT_EQ(index->frame(), (CGRect{20, 11, 20, 25}));
  EXPECT_EQ(title->autoresizingMask(), 10U);
  EXPECT_EQ(index->autoresizingMask(), 8U);
  EXPECT_EQ(title->font(), UIFont::fontWithNameSize("Arial", 15));
  EXPECT_EQ(index->font(), UIFont::fontWithNameSize("Arial", 14));
  EXPECT_EQ(title->textColor(), UIColor::blackColor());
  EXPECT_EQ(index->textColor(), UIColor::colorWithWhiteAlpha(0.6078, 1));
  EXPECT_EQ(title->keyboardType(), UIKeyboardType::Default);
  EXPECT_EQ(index->keyboardType(), UIKeyboardType::NumberPad);
  for (const auto& field : {title, index}) {
    EXPECT_EQ(field->superview(), cell->contentView().get());
    EXPECT_EQ(field->textAlignment(), NSTextAlignment::Left);
    EXPECT_EQ(field->layer()->borderColor(), borderColor);
    EXPECT_EQ(field->layer()->borderWidth(), 0.8);
  }
}

TEST(iTunesSongOfAlbumCellEditable, IsLaidOutForACellAtBirthAndClearedForReuse) {
  const auto cell = make<iTunesSongOfAlbumCellEditable>();
  ASSERT_TRUE(cell->initWithStyleReuseIdentifier(UITableViewCellStyle::Default, "x"));
  EXPECT_EQ(cell->titleLabel()->frame(), (CGRect{50, 10, 250, 25}));
  EXPECT_EQ(cell->indexLabel()->frame(), (CGRect{20, 10, 20, 25}));
  cell->titleLabel()->setText("a");
  cell->indexLabel()->setText("1");
  cell->prepareForReuse();
  EXPECT_EQ(cell->titleLabel()->text(), "");
  EXPECT_EQ(cell->indexLabel()->text(), "");
}

TEST_F(Editor, ASecondSongGetsAFreshCell) {
  show(song());
  const auto first = editor().currentCell();
  first->titleLabel()->type("Edited");
  browser->importController()->closeView();
  settle();
  auto other = song();
  other.setTitle("Second");
  show(other);
  EXPECT_EQ(editor().currentCell()->titleLabel()->text(), "Second");
  EXPECT_NE(editor().currentCell(), first);
}

TEST_F(Editor, TheCellOfAThirdSongIsTheFirstOnesUsedAgain) {
  show(song());
  const auto first = editor().currentCell();
  for (const char* title : {"Second", "Third"}) {
    editor().closeView();
    settle();
    auto next = song();
    next.setTitle(title);
    next.setIndexInCollection(std::nullopt);
    show(next);
    EXPECT_EQ(editor().currentCell()->titleLabel()->text(), title);
    EXPECT_EQ(editor().currentCell()->indexLabel()->text(), "");
  }
  EXPECT_EQ(editor().currentCell(), first);
}

TEST_F(Editor, AReloadKeepsTheCellAndLosesTheHeadersText) {
  show(song());
  const auto cell = editor().currentCell();
  const auto header = editor().headerView();
  cell->titleLabel()->type("Typed title");
  editor().albumLabelHeader()->type("Typed album");
  editor().tableView()->reloadData();
  settle();
  EXPECT_EQ(editor().currentCell(), cell);
  EXPECT_EQ(cell->titleLabel()->text(), "Typed title");
  EXPECT_NE(editor().headerView(), header);
  EXPECT_EQ(editor().albumLabelHeader()->text(), "First Steps");
}

TEST_F(Editor, TheContentCannotBePulledDownBeyondItsTop) {
  show(song());
  editor().tableView()->scrollTo({0, -80});
  EXPECT_EQ(editor().tableView()->contentOffset().y, 0);
  UIApplication::sharedApplication().screenChanged({375, 250}, UIInterfaceOrientation::Portrait);
  editor().tableView()->scrollTo({0, 30});
  EXPECT_EQ(editor().tableView()->contentOffset().y, 30);
}

TEST_F(Editor, TheInsetIsTheOrientationsWhenTheHeaderIsBuilt) {
  show(song());
  EXPECT_EQ(editor().tableView()->contentInset(), (UIEdgeInsets{0, 0, 64, 0}));
  for (const auto& [orientation, top] : {std::pair(UIInterfaceOrientation::LandscapeLeft, -35.0),
                                         std::pair(UIInterfaceOrientation::LandscapeRight, -35.0),
                                         std::pair(UIInterfaceOrientation::PortraitUpsideDown, 0.0)}) {
    UIApplication::sharedApplication().screenChanged({667, 375}, orientation);
    editor().tableView()->reloadData();
    settle();
    EXPECT_EQ(editor().tableView()->contentInset(), (UIEdgeInsets{top, 0, 64, 0}));
  }
}

TEST_F(Editor, ImportHandsTheEditedSongOver) {
  show(song());
  editor().artistLabelHeader()->type(" Spaces stay ");
  editor().albumLabelHeader()->type("");
  editor().genreLabelHeader()->type("Jazz");
  editor().yearLabelHeader()->type("19x8");
  editor().currentCell()->titleLabel()->type("New title");
  editor().currentCell()->indexLabel()->type("12");
  browser->importNavController()->navigationBar()->rightButton()->sendActionsForControlEvents(
      UIControlEvents::TouchUpInside);
  const auto& current = editor().currentSongItem();
  EXPECT_EQ(current.artist(), " Spaces stay ");
  EXPECT_EQ(current.album(), "");
  EXPECT_EQ(current.genre(), "Jazz");
  EXPECT_EQ(current.releaseYear(), "19x8");
  EXPECT_EQ(current.title(), "New title");
  EXPECT_EQ(current.indexInCollection(), "12");
  ASSERT_EQ(service.kept.size(), 1U);
  const auto lines = service.lines(0);
  EXPECT_THAT(lines, testing::Contains(HasSubstr("New title")));
  EXPECT_THAT(lines, testing::Contains(
                         HasSubstr("http://localhost:8080/qvtolmarinimporter.mp3?/var/mobile/Media/a.mp3")));
  EXPECT_EQ(editor().localfileRequest()->URL().absoluteString(), "/var/mobile/Media/a.mp3");
  EXPECT_EQ(StatusCore::sharedInstance().messageLabel()->text(), "IMPORT_SUCCESS");
  EXPECT_EQ(StatusCore::sharedInstance().messageView()->superview(), window.get());
  settle();
  EXPECT_FALSE(host->presentedViewController());
}

TEST_F(Editor, CancelImportsNothingAndKeepsTheWorkingCopy) {
  show(song());
  browser->importNavController()->navigationBar()->leftButton()->sendActionsForControlEvents(
      UIControlEvents::TouchUpInside);
  settle();
  EXPECT_FALSE(host->presentedViewController());
  EXPECT_TRUE(service.kept.empty());
  EXPECT_EQ(editor().currentSongItem(), song());
}

TEST_F(Editor, ImportBeforeAnythingWasShownTakesNoTexts) {
  editor().showImportForSongWithDownloadRequest(song(), request());
  EXPECT_FALSE(editor().currentCell());
  editor().import();
  EXPECT_EQ(service.kept.size(), 1U);
  EXPECT_FALSE(editor().currentSongItem().title());
}

TEST_F(Editor, APickedPictureIsStagedAsJPEGUnderAPNGName) {
  show(song());
  camera().sendActionsForControlEvents(UIControlEvents::TouchUpInside);
  settle();
  ASSERT_TRUE(picker());
  EXPECT_TRUE(picker()->allowsEditing());
  EXPECT_EQ(picker()->sourceType(), UIImagePickerControllerSourceType::PhotoLibrary);
  picker()->pick(test::square(200));
  EXPECT_THAT(staged(), testing::StartsWith("\xff\xd8\xff"));
  const auto& current = editor().currentSongItem();
  EXPECT_EQ(current.artworkLow(), pickedURL);
  EXPECT_EQ(current.artworkMedium(), pickedURL);
  EXPECT_EQ(current.artworkHigh(), pickedURL);
  settle();
  EXPECT_FALSE(picker());
  EXPECT_TRUE(waitFor([&] { return editor().imgView()->image() && editor().headerView()->image(); }));
  EXPECT_NE(editor().headerView()->image(), editor().imgView()->image());
}

TEST_F(Editor, ASecondPictureTakesTheFirstOnesPlace) {
  show(song());
  editor().selectPhoto();
  picker()->pick(test::square(200));
  ASSERT_TRUE(waitFor([&] { return editor().imgView()->image() && editor().headerView()->image(); }));
  settle();
  const auto first = staged();
  const auto firstShown = editor().imgView()->image();
  editor().selectPhoto();
  picker()->pick(test::square(20));
  settle();
  EXPECT_NE(staged(), first);
  EXPECT_TRUE(waitFor([&] { return editor().imgView()->image() != firstShown; }));
}

TEST_F(Editor, APictureThatCannotBeStagedIsNamedAllTheSame) {
  show(song());
  device.temporary().write("tmp", "a file stands in the way");
  editor().selectPhoto();
  picker()->pick(test::square(200));
  settle();
  EXPECT_FALSE(picker());
  EXPECT_EQ(editor().currentSongItem().artworkMedium(), pickedURL);
  EXPECT_TRUE(waitFor([&] { return editor().imgView()->subviews().size() == 1; })) << "the wheel goes";
  EXPECT_FALSE(editor().imgView()->image());
}

TEST_F(Editor, ACancelledPickerChangesNothing) {
  show(song());
  editor().selectPhoto();
  settle();
  picker()->cancel();
  settle();
  EXPECT_FALSE(picker());
  EXPECT_EQ(editor().currentSongItem(), song());
  EXPECT_FALSE(std::filesystem::exists(device.temporary() / "tmp/current_album_image.png"));
}

TEST_F(Editor, ARewrittenCoverIsLoadedAnewAndAOneCharacterOneIsNone) {
  auto shown = song();
  shown.setArtworkMedium("file:///x/cover.jpg");
  CachesCore::CachedImages()->setObjectForKey(test::square(255), "file:///x/cover.jpg-blur-12");
  editor().showImportForSongWithDownloadRequest(shown, request());
  EXPECT_FALSE(CachesCore::CachedImages()->objectForKey("file:///x/cover.jpg-blur-12"));
  shown.setArtworkMedium("x");
  CachesCore::CachedImages()->setObjectForKey(test::square(255), "file:///x/other.jpg");
  show(shown);
  EXPECT_TRUE(CachesCore::CachedImages()->objectForKey("file:///x/other.jpg"));
  EXPECT_TRUE(editor().imgView()->subviews().size() == 1) << "no wheel turns";
}

TEST_F(Editor, AFolderThatCannotBeMadeIsLoggedAndTheEditorStillWorks) {
  std::string log;
  setLogSink([&](std::string_view line) { log += line; });
  device.temporary().write("tmp", "a file stands in the way");
  EXPECT_EQ(editor().quaverlyTempDirectory(), "/var/mobile/Media/Quaverly/tmp/");
  EXPECT_THAT(log, HasSubstr("Failed to create directory \"/var/mobile/Media/Quaverly/tmp/\". Error: "));
  setLogSink(nullptr);
}

class EditorIdentifier : public Editor, public testing::WithParamInterface<std::pair<const char*, bool>> {};

TEST_P(EditorIdentifier, IsGivenFromVersionEightThreeOn) {
  device->systemVersion = GetParam().first;
  device->random = [] { return 0x80000000U; };
  show(song());
  editor().import();
  const bool has = testing::Value(service.lines(0), testing::Contains(HasSubstr("462897088")));
  EXPECT_EQ(has, GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Versions, EditorIdentifier,
                         testing::Values(std::pair("8.2", false), std::pair("8.29", false),
                                         std::pair("8.3", true), std::pair("8.3.1", true),
                                         std::pair("8.4", true)));

}  // namespace
}  // namespace quaverly
