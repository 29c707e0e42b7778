#include "Host/Library/OutsideFiles.h"

#include <filesystem>
#include <optional>
#include <utility>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::library {
namespace {

constexpr const char* importFolder = "/var/mobile/Import/";

MountTable& mounts() {
  return Device::current().mounts;
}

/// `path` with the links in its folders followed; the last component stays as it is.
std::string withRealFolder(const std::string& path) {
  std::error_code error;
  const auto folder = std::filesystem::canonical(NSStringByDeletingLastPathComponent(path), error);
  if (error) return path;
  return (folder / NSStringLastPathComponent(path)).string();
}

bool leadsTo(const std::string& devicePath, const std::string& hostPath) {
  const auto location = mounts().resolve(devicePath);
  return location && location->hostPath == hostPath;
}

}  // namespace

OutsideFile::OutsideFile(std::string devicePath, std::string hostPath)
    : _devicePath(std::move(devicePath)), _hostPath(std::move(hostPath)) {
  mounts().mount(_devicePath, _hostPath, MountTable::Access::readOnly);
}

OutsideFile::~OutsideFile() {
  mounts().unmount(_devicePath);
}

Result<std::shared_ptr<const OutsideFile>> OutsideFiles::mount(const std::string& hostPath) {
  const std::string name = NSStringLastPathComponent(hostPath);
  if (!NSStringIsUTF8(name)) {
    return Failure{"The file's name is not UTF-8 text. Rename the file to import it."};
  }
  std::lock_guard lock(_mutex);
  std::erase_if(_files, [](const auto& file) { return file.second.expired(); });
  const std::string path = importFolder + std::to_string(++_lastNumber) + "/" + name;
  auto file = std::make_shared<const OutsideFile>(path, hostPath);
  _files.emplace(path, file);
  return file;
}

std::shared_ptr<const OutsideFile> OutsideFiles::mounted(const std::string& devicePath) const {
  std::lock_guard lock(_mutex);
  const auto found = _files.find(MountTable::canonical(devicePath));
  return found == _files.end() ? nullptr : found->second.lock();
}

std::optional<std::string> mountedDevicePath(const std::string& hostPath) {
  for (const auto& path : {hostPath, withRealFolder(hostPath)}) {
    const auto devicePath = mounts().devicePath(path);
    // Another mount may lie over that place.
    if (devicePath && NSStringIsUTF8(*devicePath) && leadsTo(*devicePath, path)) return devicePath;
  }
  return std::nullopt;
}

}  // namespace quaverly::library
