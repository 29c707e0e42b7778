#pragma once

#include <optional>
#include <string>

#include "Cells/iTunesSongOfAlbumCellEditable.h"
#include "Other/QVClasses.h"
#include "Platform/Foundation/NSURL.h"
#include "Platform/UIKit/UIImagePickerController.h"
#include "Platform/UIKit/UITableViewController.h"
#include "Platform/UIKit/UITextField.h"

namespace quaverly {

/// The screen on which a person reviews and corrects the tags of one audio file, and starts its import. One
/// instance shows song after song. Loading its view starts the local import server. Main thread only.
class CustomImportViewController : public UITableViewController, public UIImagePickerControllerDelegate {
 public:
  CustomImportViewController* init() override { return this; }

  /// Shows a song, of which it keeps a copy to work on; the request addresses its file.
  void showImportForSongWithDownloadRequest(const iTunesSongItem& song, const NSURLRequest& request);

  /// Takes the texts as they stand and starts the import; what becomes of it is not waited for.
  void import();
  void closeView();
  void selectPhoto();

  /// The folder for staged artwork; made when it is not there, which is logged when it fails.
  std::string quaverlyTempDirectory();

  /// The song that is shown; the fields' texts come into it with `import`.
  const iTunesSongItem& currentSongItem() const { return _currentSongItem; }
  void setCurrentSongItem(iTunesSongItem song) { _currentSongItem = std::move(song); }

  void viewDidLoad() override;
  size_t numberOfSectionsInTableView(UITableView& table) override;
  size_t tableViewNumberOfRowsInSection(UITableView& table, size_t section) override;
  std::optional<double> tableViewHeightForHeaderInSection(UITableView& table, size_t section) override;
  /// A new header each time: what was typed into the last one is lost.
  Ref<UIView> tableViewViewForHeaderInSection(UITableView& table, size_t section) override;
  /// The same cell for as long as the song is the same.
  Ref<UITableViewCell> tableViewCellForRowAtIndexPath(UITableView& table, NSIndexPath path) override;
  /// Keeps the content from being pulled down beyond its top.
  void scrollViewDidScroll(UIScrollView& table) override;

  void imagePickerControllerDidFinishPickingMediaWithInfo(UIImagePickerController& picker,
                                                          const UIImagePickerInfo& info) override;
  void imagePickerControllerDidCancel(UIImagePickerController& picker) override;

  // The latest header's views, null before the first; the cell, null until the song's row was shown.
  const Ref<UITextField>& albumLabelHeader() const { return _albumLabelHeader; }
  const Ref<UITextField>& artistLabelHeader() const { return _artistLabelHeader; }
  const Ref<UITextField>& genreLabelHeader() const { return _genreLabelHeader; }
  const Ref<UITextField>& yearLabelHeader() const { return _yearLabelHeader; }
  const Ref<UIImageView>& imgView() const { return _imgView; }
  const Ref<UIImageView>& headerView() const { return _headerView; }
  const Ref<iTunesSongOfAlbumCellEditable>& currentCell() const { return _currentCell; }
  const std::optional<NSURLRequest>& localfileRequest() const { return _localfileRequest; }

 private:
  static constexpr const char* cellIdentifier = "iTunesSongOfAlbumCellEditable";

  void prepareTable();
  void prepareNavigationItem();
  void prepareNavigationBar();
  void makeRoomAroundContent(UITableView& table) const;
  void makeHeaderView(double width, double height);
  void makeArtworkView();
  void makeHeaderFields(double width);
  void fillHeaderFields();
  void loadArtwork();
  std::optional<std::string> shownArtwork() const;
  void writeBackEdits();

  std::optional<NSURLRequest> _localfileRequest;
  Ref<UITextField> _albumLabelHeader;
  Ref<UITextField> _artistLabelHeader;
  Ref<UITextField> _genreLabelHeader;
  Ref<UITextField> _yearLabelHeader;
  Ref<UIImageView> _imgView;
  Ref<UIImageView> _headerView;
  Ref<iTunesSongOfAlbumCellEditable> _currentCell;
  iTunesSongItem _currentSongItem;
};

}  // namespace quaverly
