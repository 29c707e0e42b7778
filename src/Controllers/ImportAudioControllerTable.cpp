#include "Controllers/ImportAudioController.h"
#include "Cores/CachesCore.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly {
namespace {

constexpr auto textColor = UIColor::colorWithRedGreenBlueAlpha(0.188235, 0.188235, 0.188235, 1);

const char* iconName(const FileItem& item) {
  if (item.isDirectory()) return "folder_icon";
  return item.isAudioFile() ? "sound_file_icon" : "page_white_icon";
}

/// An absent text prints as the platform prints nothing.
std::string printed(const FileItem::Text& text) {
  return text.value_or("(null)");
}

void prepareLabel(UILabel& label, UIColor color, double fontSize) {
  label.setBackgroundColor(UIColor::clearColor());
  label.setTextColor(color);
  label.setHighlightedTextColor(UIColor::grayColor());
  label.setFont(UIFont::fontWithNameSize("Arial", fontSize));
  label.setTextAlignment(NSTextAlignment::Left);
}

}  // namespace

size_t ImportAudioController::numberOfSectionsInTableView(UITableView&) {
  return 1;
}

size_t ImportAudioController::tableViewNumberOfRowsInSection(UITableView& table, size_t) {
  if (!_fileItems.empty())
    _statusLabel->removeFromSuperview();
  else
    table.addSubview(_statusLabel);
  return _fileItems.size();
}

Ref<UITableViewCell> ImportAudioController::tableViewCellForRowAtIndexPath(UITableView& table,
                                                                           NSIndexPath path) {
  if (path.row >= _fileItems.size()) return nullptr;
  auto cell = make<UITableViewCell>();
  if (!cell->initWithStyleReuseIdentifier(UITableViewCellStyle::Subtitle, "FileCell")) return nullptr;
  cell->contentView()->setBackgroundColor(table.backgroundColor());
  const FileItem& item = _fileItems[path.row];
  prepareLabel(*cell->textLabel(), textColor, 18);
  cell->textLabel()->setText(NSStringLastPathComponent(item.path().value_or("")));
  prepareLabel(*cell->detailTextLabel(), UIColor::grayColor(), 11);
  cell->imageView()->setImage(CachesCore::cachedImageWithContentsOfFileName(iconName(item)));
  if (item.isDirectory()) {
    cell->detailTextLabel()->setText(item.date());
    return cell;
  }
  cell->detailTextLabel()->setText(printed(item.size()) + " " + printed(item.date()));
  if (!item.isAudioFile()) {
    cell->textLabel()->setTextColor(UIColor::grayColor());
    cell->setSelectionStyle(UITableViewCellSelectionStyle::None);
  }
  return cell;
}

void ImportAudioController::tableViewDidSelectRowAtIndexPath(UITableView& table, NSIndexPath path) {
  table.deselectRowAtIndexPathAnimated(path, UIAnimated::No);
  if (path.row >= _fileItems.size()) return;
  // A copy: opening a folder replaces the list.
  const FileItem item = _fileItems[path.row];
  if (item.isDirectory()) {
    setItems(ItemsInFolder(item.path().value_or("")));
  } else if (item.isAudioFile()) {
    showImportOf(item);
  }
}

void ImportAudioController::showImportOf(const FileItem& item) {
  const std::string path = item.path().value_or("");
  const auto url = NSURL::URLWithString(NSStringByAddingPercentEscapesForQuery(path));
  if (!url) return;
  const NSURLRequest request(*url);
  _importController->showImportForSongWithDownloadRequest(songItemFromPath(path), request);
  presentViewControllerAnimatedCompletion(_importNavController, UIAnimated::Yes);
}

}  // namespace quaverly
