#include "Controllers/CustomImportViewController.h"

#include "Cores/CachesCore.h"
#include "Cores/QVFileResponse.h"
#include "Cores/QVImporter.h"
#include "Cores/StatusCore.h"
#include "Externals/HTTPServer/HTTPServer.h"
#include "Other/LocalizedStrings.h"
#include "Other/StagedArtwork.h"
#include "Platform/Foundation/NSFileManager.h"
#include "Platform/UIKit/UINavigationController.h"

namespace quaverly {
namespace {

constexpr const char* pickedArtworkName = "current_album_image.png";
constexpr auto separatorColor = UIColor::colorWithRedGreenBlueAlpha(0.9098, 0.9098, 0.9098, 1.0);
constexpr double rowHeight = 45;
constexpr double artworkQuality = 1.0;

/// The text of a field that was never shown is absent.
std::optional<std::string> textOf(const Ref<UITextField>& field) {
  return field ? std::optional(field->text()) : std::nullopt;
}

}  // namespace

void CustomImportViewController::showImportForSongWithDownloadRequest(const iTunesSongItem& song,
                                                                      const NSURLRequest& request) {
  _currentSongItem = iTunesSongItem();
  _currentSongItem.setTitle(song.title());
  _currentSongItem.setArtist(song.artist());
  _currentSongItem.setAlbum(song.album());
  _currentSongItem.setGenre(song.genre());
  _currentSongItem.setReleaseYear(song.releaseYear());
  _currentSongItem.setIndexInCollection(song.indexInCollection());
  _currentSongItem.setDuration(song.duration());
  _currentSongItem.setID(song.ID());
  _currentSongItem.setArtworkLow(song.artworkLow());
  _currentSongItem.setArtworkMedium(song.artworkMedium());
  _currentSongItem.setArtworkHigh(song.artworkHigh());
  _localfileRequest = request;
  _currentCell = nullptr;
  // The staged file has the same name for every song.
  if (const auto artwork = shownArtwork()) CachesCore::deleteValuesWithRangeOfString(*artwork);
  tableView()->reloadData();
}

void CustomImportViewController::viewDidLoad() {
  UITableViewController::viewDidLoad();
  prepareTable();
  prepareNavigationItem();
  prepareNavigationBar();
  HTTPServer::sharedHTTPServer()->start();
  QVFileResponse::load();
}

void CustomImportViewController::prepareTable() {
  const auto table = tableView();
  table->setSeparatorStyle(UITableViewCellSeparatorStyle::SingleLine);
  table->setSeparatorColor(separatorColor);
  table->setTableFooterView(make<UIView>());
  table->setShowsVerticalScrollIndicator(false);
  table->setBackgroundColor(UIColor::whiteColor());
  table->setDataSource(this);
  table->setDelegate(this);
  table->setRowHeight(rowHeight);
  table->registerClassForCellReuseIdentifier<iTunesSongOfAlbumCellEditable>(cellIdentifier);
}

void CustomImportViewController::prepareNavigationItem() {
  const auto item = navigationItem();
  item->setTitleView(make<UILabel>());
  item->setRightBarButtonItem(
      make<UIBarButtonItem>(LocalizedStrings::languageSelectedStringForKey("IMPORT"),
                            UITargetAction(this, &CustomImportViewController::import)));
  item->setLeftBarButtonItem(make<UIBarButtonItem>(
      UIBarButtonSystemItem::Cancel, UITargetAction(this, &CustomImportViewController::closeView)));
}

/// The bar is transparent, over the dark header.
void CustomImportViewController::prepareNavigationBar() {
  auto* const navigation = navigationController();
  if (!navigation) return;
  const auto& bar = navigation->navigationBar();
  bar->setBackgroundImageForBarMetrics(make<UIImage>(), UIBarMetrics::Default);
  bar->setShadowImage(make<UIImage>());
  bar->setTintColor(UIColor::whiteColor());
}

void CustomImportViewController::import() {
  writeBackEdits();
  QVImporter::importerForSong(_currentSongItem, _localfileRequest)->import();
  closeView();
  StatusCore::sharedInstance().showTempMessage(
      LocalizedStrings::languageSelectedStringForKey("IMPORT_SUCCESS"));
}

void CustomImportViewController::writeBackEdits() {
  _currentSongItem.setArtist(textOf(_artistLabelHeader));
  _currentSongItem.setAlbum(textOf(_albumLabelHeader));
  _currentSongItem.setGenre(textOf(_genreLabelHeader));
  _currentSongItem.setReleaseYear(textOf(_yearLabelHeader));
  _currentSongItem.setTitle(textOf(_currentCell ? _currentCell->titleLabel() : nullptr));
  _currentSongItem.setIndexInCollection(textOf(_currentCell ? _currentCell->indexLabel() : nullptr));
}

void CustomImportViewController::closeView() {
  if (auto* const navigation = navigationController())
    navigation->dismissViewControllerAnimatedCompletion(UIAnimated::Yes);
}

std::string CustomImportViewController::quaverlyTempDirectory() {
  return temporaryArtworkDirectory();
}

void CustomImportViewController::selectPhoto() {
  const auto picker = make<UIImagePickerController>();
  picker->setPickerDelegate(this);
  picker->setAllowsEditing(true);
  picker->setSourceType(UIImagePickerControllerSourceType::PhotoLibrary);
  presentViewControllerAnimatedCompletion(picker, UIAnimated::Yes);
}

void CustomImportViewController::imagePickerControllerDidFinishPickingMediaWithInfo(
    UIImagePickerController& picker, const UIImagePickerInfo& info) {
  const std::string path = quaverlyTempDirectory() + pickedArtworkName;
  const auto& files = NSFileManager::defaultManager();
  if (files.fileExistsAtPath(path)) files.removeItemAtPath(path);
  const auto edited = info.find(UIImagePickerControllerEditedImage);
  // JPEG under a PNG's name: whoever reads it goes by the content.
  const auto encoded = edited != info.end() && edited->second
                           ? UIImageJPEGRepresentation(*edited->second, artworkQuality)
                           : std::nullopt;
  if (encoded) static_cast<void>(encoded->writeToFileAtomically(path));
  const std::string url = stagedArtworkURL(path);
  _currentSongItem.setArtworkLow(url);
  _currentSongItem.setArtworkMedium(url);
  _currentSongItem.setArtworkHigh(url);
  CachesCore::deleteValuesWithRangeOfString(url);
  loadArtwork();
  picker.dismissViewControllerAnimatedCompletion(UIAnimated::Yes);
}

void CustomImportViewController::imagePickerControllerDidCancel(UIImagePickerController& picker) {
  picker.dismissViewControllerAnimatedCompletion(UIAnimated::Yes);
}

}  // namespace quaverly
