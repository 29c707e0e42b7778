#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "Controllers/ImportAudioController.h"
#include "Host/CommandLine/Commands.h"
#include "Host/CommandLine/HostDevice.h"
#include "Host/Environment/HostWords.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSFileManager.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::commandline {
namespace {

/// A device path stays one; any other path is looked for under the media folder, on the host and then below
/// it.
std::string deviceFolder(const std::string& path, const HostDevice& device) {
  const auto& mounts = Device::current().mounts;
  if (path.starts_with('/')) {
    if (mounts.resolve(path) || mounts.isOnTheWay(path)) return MountTable::canonical(path);
    return library::mountedDevicePath(std::filesystem::path(path).lexically_normal()).value_or(path);
  }
  return MountTable::canonical(NSStringByAppendingPathComponent(device.mediaPath, path));
}

/// Why a device folder cannot be listed, or nothing. The screen itself does not tell.
std::optional<std::string> problemWith(const std::string& folder) {
  Ref<NSError> error;
  if (NSFileManager::defaultManager().contentsOfDirectoryAtPath(folder, &error)) return std::nullopt;
  return error->localizedDescription() + ". Name another folder, or another --media.";
}

JsonObject object(const FileItem& item) {
  JsonObject json;
  json["path"] = item.path().value_or("");
  json["isDirectory"] = item.isDirectory();
  json["isAudioFile"] = item.isAudioFile();
  if (item.size()) json["size"] = *item.size();
  if (item.date()) json["date"] = *item.date();
  return json;
}

std::string line(const FileItem& item) {
  const std::string name = NSStringLastPathComponent(item.path().value_or(""));
  if (item.isDirectory()) return name + "/  " + item.date().value_or("");
  const std::string kind = item.isAudioFile() ? "  " + host::inUsersLanguage("(song)") : "";
  return name + "  " + item.size().value_or("") + " " + item.date().value_or("") + kind;
}

void print(const Console& console, const ImportAudioController& browser, const std::vector<FileItem>& items) {
  JsonObject json;
  json["openedFolder"] = browser.openedFolder()->string();
  json["backTitle"] = browser.temporaryBarButtonItem()->title().value_or("");
  JsonObject list = JsonObject::array();
  if (console.form() == Form::json) std::ranges::transform(items, std::back_inserter(list), object);
  json["items"] = std::move(list);
  console.object(json);
  std::vector<std::string> lines;
  std::ranges::transform(items, std::back_inserter(lines), line);
  console.results(lines);
}

}  // namespace

ExitStatus runList(const Console& console, const CommonOptions& common, const std::string& path) {
  const HostDevice device(common);
  const std::string folder = path.empty() ? device.mediaPath : deviceFolder(path, device);
  auto browser = make<ImportAudioController>();
  browser->init();
  browser->loadView();
  const auto items = path.empty() ? browser->fileItems() : browser->ItemsInFolder(folder);
  print(console, *browser, items);
  const auto problem = items.empty() ? problemWith(folder) : std::nullopt;
  if (problem) console.problem(path.empty() ? device.media().string() : path, *problem);
  return problem ? ExitStatus::failed : ExitStatus::done;
}

}  // namespace quaverly::commandline
