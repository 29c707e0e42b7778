#pragma once

#include <string>
#include <vector>

#include "Controllers/CustomImportViewController.h"
#include "Other/QVClasses.h"
#include "Platform/AVFoundation/AVMetadataItem.h"
#include "Platform/Foundation/NSMutableString.h"
#include "Platform/Preferences/PSViewController.h"
#include "Platform/UIKit/UIBarButtonItem.h"
#include "Platform/UIKit/UILabel.h"
#include "Platform/UIKit/UINavigationController.h"
#include "Platform/UIKit/UITableView.h"

namespace quaverly {

/// The screen from which a person picks a local audio file: it shows one folder of the device at a time.
/// Main thread only.
class ImportAudioController : public PSViewController,
                              public UITableViewDataSource,
                              public UITableViewDelegate {
 public:
  ImportAudioController* init() override;
  void loadView() override;

  /// The screen's view, which is the table; loads it.
  Ref<UITableView> tableView();

  /// Lists a folder, and makes it the opened one: the subtitle shows its path, the back button the folder
  /// above it. The entries come in the file system's order, hidden ones too; a folder that cannot be read has
  /// none.
  std::vector<FileItem> ItemsInFolder(std::string folder);

  /// Installs a listing as the one on screen, and shows its rows.
  void setItems(std::vector<FileItem> items);
  void setSubTitle(std::string subTitle);

  /// Lists the folder above the opened one; "/" is above itself.
  void backBrowser();

  size_t numberOfSectionsInTableView(UITableView& table) override;
  /// Shows the message for an empty folder, or takes it away.
  size_t tableViewNumberOfRowsInSection(UITableView& table, size_t section) override;
  /// A new cell each time.
  Ref<UITableViewCell> tableViewCellForRowAtIndexPath(UITableView& table, NSIndexPath path) override;
  /// Opens a folder, or hands an audio file to the import editor.
  void tableViewDidSelectRowAtIndexPath(UITableView& table, NSIndexPath path) override;

  /// Reads the tags of an audio file, and stages its cover as a JPEG file in the temporary folder. An
  /// unreadable file gives an empty record.
  iTunesSongItem songItemFromPath(const std::string& path);

  /// Puts one item of a file's metadata into the record, over what is there; artwork is staged. Items that
  /// the record has no field for are ignored.
  void readMetadataItemIntoSongItem(const AVMetadataItem& item, iTunesSongItem& song);

  /// The folder for staged artwork; made when it is not there, which is logged when it fails.
  std::string quaverlyTempDirectory();

  /// The path of the folder on screen: one object, overwritten by every listing.
  const Ref<NSMutableString>& openedFolder() const { return _openedFolder; }
  void setOpenedFolder(Ref<NSMutableString> openedFolder) { _openedFolder = std::move(openedFolder); }

  const std::vector<FileItem>& fileItems() const { return _fileItems; }
  void setFileItems(std::vector<FileItem> fileItems) { _fileItems = std::move(fileItems); }

  const Ref<UILabel>& titleLabel() const { return _titleLabel; }
  const Ref<UILabel>& subTitleLabel() const { return _subTitleLabel; }
  const Ref<UILabel>& statusLabel() const { return _statusLabel; }
  /// The button that goes back up, and names the folder it goes to.
  const Ref<UIBarButtonItem>& temporaryBarButtonItem() const { return _temporaryBarButtonItem; }
  /// The one editor, and the navigation controller in which it is presented.
  const Ref<CustomImportViewController>& importController() const { return _importController; }
  const Ref<UINavigationController>& importNavController() const { return _importNavController; }

 private:
  void readArtwork(const AVMetadataItem& item, iTunesSongItem& song);
  std::string openedFolderText() const;
  std::string backTitle(const std::string& folder) const;
  void makeTable();
  Ref<UIView> makeTitleView(CGRect bar);
  void prepareStatusLabel(double width);
  void showImportOf(const FileItem& item);

  Ref<UILabel> _titleLabel;
  Ref<UILabel> _subTitleLabel;
  Ref<UILabel> _statusLabel;
  Ref<UIBarButtonItem> _temporaryBarButtonItem;
  Ref<CustomImportViewController> _importController;
  Ref<UINavigationController> _importNavController;
  Ref<NSMutableString> _openedFolder;
  std::vector<FileItem> _fileItems;
};

}  // namespace quaverly
