#include "Platform/Foundation/NSBundle.h"

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSFileManager.h"
#include "Platform/Foundation/NSFramework.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/Foundation/StringTables/StringTable.h"

namespace quaverly {
namespace {

bool isFolder(std::string_view path) {
  bool isDirectory = false;
  NSFileManager::defaultManager().fileExistsAtPathIsDirectory(path, isDirectory);
  return isDirectory;
}

/// Frameworks lie in no mounted folder: the device has them unless it is said to lack them.
bool isFramework(const std::string& path) {
  return path.ends_with(".framework") && !Device::current().absentFrameworks.contains(path);
}

/// What tells one bundle from another: the folder on the host, which another mount exchanges.
std::string identity(const std::string& path) {
  const auto location = Device::current().mounts.resolve(path);
  return path + '\0' + (location ? location->hostPath : "");
}

std::shared_ptr<const StringTable> readTable(const std::string& path) {
  const auto data = NSData::dataWithContentsOfFile(path);
  if (!data || data->length() > StringTable::largestFile) return nullptr;
  auto table = StringTable::parse(data->text());
  return table ? std::make_shared<const StringTable>(std::move(*table)) : nullptr;
}

}  // namespace

NSBundle::NSBundle(std::string path) : _path(std::move(path)) {}

NSBundle::~NSBundle() = default;

Ref<NSBundle> NSBundle::bundleWithPath(std::string_view path) {
  static std::mutex mutex;
  static std::map<std::string, Ref<NSBundle>> opened;
  auto canonicalPath = MountTable::canonical(path);
  if (!isFramework(canonicalPath) && !isFolder(path)) return nullptr;
  const std::lock_guard lock(mutex);
  auto& bundle = opened[identity(canonicalPath)];
  if (!bundle) bundle = make<NSBundle>(std::move(canonicalPath));
  return bundle;
}

bool NSBundle::load() {
  return loadFramework(_path);
}

bool NSBundle::unload() {
  const bool wasLoaded = isLoaded();
  unloadFramework(_path);
  return wasLoaded;
}

bool NSBundle::isLoaded() const {
  return isFrameworkLoaded(_path);
}

std::optional<std::string> NSBundle::pathForResourceOfType(std::string_view name,
                                                           std::string_view type) const {
  auto path = NSStringByAppendingPathComponent(_path, name).append(".").append(type);
  if (!NSFileManager::defaultManager().fileExistsAtPath(path)) return std::nullopt;
  return path;
}

std::string NSBundle::localizedStringForKeyValueTable(std::string_view key,
                                                      std::optional<std::string_view> value,
                                                      std::optional<std::string_view> table) const {
  const auto texts = tableNamed(std::string(table.value_or("Localizable")));
  if (const auto* text = texts ? texts->find(key) : nullptr) return *text;
  return std::string(value && !value->empty() ? *value : key);
}

std::shared_ptr<const StringTable> NSBundle::tableNamed(const std::string& name) const {
  const std::lock_guard lock(_mutex);
  auto& known = _tables[name];
  if (!known) {
    const auto path = pathForResourceOfType(name, "strings");
    known = path ? readTable(*path) : nullptr;
  }
  return known;
}

}  // namespace quaverly
