#include "Controllers/ImportAudioController.h"
#include "Platform/Foundation/NSByteCountFormatter.h"
#include "Platform/Foundation/NSDateFormatter.h"
#include "Platform/Foundation/NSFileManager.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly {
namespace {

/// The last three characters decide, bare and in lower case: no dot is asked for.
bool isAudioPath(std::string_view path) {
  return path.ends_with("mp3");
}

std::string sizeText(const std::optional<NSFileAttributes>& attributes) {
  return NSByteCountFormatter::stringFromByteCountCountStyle(attributes ? attributes->fileSize() : 0,
                                                             NSByteCountFormatterCountStyle::File);
}

std::optional<std::string> dateText(const std::optional<NSFileAttributes>& attributes) {
  if (!attributes) return std::nullopt;
  NSDateFormatter formatter;
  formatter.setDateFormat("dd/MM/yyyy h:mm a");
  return formatter.stringFromDate(attributes->fileModificationDate());
}

FileItem itemAtPath(std::string path) {
  const auto& manager = NSFileManager::defaultManager();
  bool isDirectory = false;
  manager.fileExistsAtPathIsDirectory(path, isDirectory);
  FileItem item;
  item.setIsDirectory(isDirectory);
  const auto attributes = manager.attributesOfItemAtPath(path);
  item.setDate(dateText(attributes));
  if (!isDirectory) {
    item.setSize(sizeText(attributes));
    item.setIsAudioFile(isAudioPath(path));
  }
  item.setPath(std::move(path));
  return item;
}

}  // namespace

std::vector<FileItem> ImportAudioController::ItemsInFolder(std::string folder) {
  send(_openedFolder, &NSMutableString::setString, folder);
  setSubTitle(openedFolderText());
  send(_temporaryBarButtonItem, &UIBarButtonItem::setTitle, backTitle(folder));
  std::vector<FileItem> items;
  const auto contents = NSFileManager::defaultManager().contentsOfDirectoryAtPath(folder);
  if (!contents) return items;
  items.reserve(contents->size());
  for (const auto name : *contents)
    items.push_back(itemAtPath(NSStringByAppendingPathComponent(folder, name)));
  return items;
}

void ImportAudioController::backBrowser() {
  setItems(ItemsInFolder(NSStringByDeletingLastPathComponent(openedFolderText())));
}

std::string ImportAudioController::openedFolderText() const {
  return _openedFolder ? _openedFolder->string() : std::string();
}

/// The button names the folder that it goes back to, with a slash before it.
std::string ImportAudioController::backTitle(const std::string& folder) const {
  if (folder == "/") return "";
  const auto parent = NSStringByDeletingLastPathComponent(openedFolderText());
  return parent == "/" ? "/" : "/" + NSStringLastPathComponent(parent);
}

}  // namespace quaverly
