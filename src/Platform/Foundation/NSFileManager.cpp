#include "Platform/Foundation/NSFileManager.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/Foundation/OpenFolder.h"

namespace quaverly {
namespace {

const MountTable& mounts() {
  return Device::current().mounts;
}

std::error_code reason(std::errc code) {
  return std::make_error_code(code);
}

/// The platform's number for what went wrong; writing and reading have ranges of their own.
int cocoaCode(const std::error_code& reason, bool writing) {
  if (reason == std::errc::no_such_file_or_directory) return writing ? 4 : 260;
  if (reason == std::errc::permission_denied || reason == std::errc::operation_not_permitted)
    return writing ? 513 : 257;
  if (reason == std::errc::filename_too_long) return writing ? 514 : 258;
  if (reason == std::errc::file_exists) return 516;
  if (reason == std::errc::no_space_on_device) return 640;
  if (reason == std::errc::read_only_file_system) return 642;
  return writing ? 512 : 256;
}

enum class Attempt { list, remove, create };

const char* inWords(Attempt attempt) {
  switch (attempt) {
    case Attempt::list:
      return "listed";
    case Attempt::remove:
      return "removed";
    case Attempt::create:
      return "created";
  }
  return "";
}

/// Whether it worked; otherwise tells `error`, when somebody asked, what was attempted and why it failed.
bool succeeded(const std::error_code& reason, Attempt attempt, std::string_view path, Ref<NSError>* error) {
  if (!reason) return true;
  if (!error) return false;
  const auto description =
      "\"" + NSStringWithReplacements(path) + "\" could not be " + inWords(attempt) + ": " + reason.message();
  using UserInfo = std::map<std::string, std::string>;
  *error = make<NSError>(NSCocoaErrorDomain, cocoaCode(reason, attempt != Attempt::list),
                         UserInfo{{NSLocalizedDescriptionKey, description}});
  return false;
}

/// Where a path that is to be changed lies on the host; empty, with the reason, when it may not be.
std::string writableHostPath(std::string_view path, std::error_code& refusal) {
  const auto location = mounts().resolve(path);
  if (location && location->access == MountTable::Access::readWrite) return location->hostPath;
  const bool exists = location || mounts().isOnTheWay(path);
  refusal = reason(exists ? std::errc::read_only_file_system : std::errc::no_such_file_or_directory);
  return {};
}

std::shared_ptr<OpenFolder> openFolder(std::string_view path, std::error_code& refusal) {
  if (mounts().isOnTheWay(path)) return OpenFolder::onTheWay(mounts().namesTowardsMounts(path));
  if (const auto location = mounts().resolve(path))
    return OpenFolder::open(path, location->hostPath, mounts().namesTowardsMounts(path), refusal);
  refusal = reason(std::errc::no_such_file_or_directory);
  return nullptr;
}

FileLook lookAfresh(std::string_view path) {
  if (const auto location = mounts().resolve(path)) return lookAtHostPath(location->hostPath);
  const bool isFolder = mounts().isOnTheWay(path);
  return {.exists = isFolder, .isDirectory = isFolder, .attributes = std::nullopt};
}

std::error_code removeWithContents(const std::string& hostPath) {
  std::error_code failure;
  const auto removed = std::filesystem::remove_all(hostPath, failure);
  if (!failure && removed == 0) return reason(std::errc::no_such_file_or_directory);
  return failure;
}

std::error_code createWithFoldersOnTheWay(const std::string& hostPath) {
  std::error_code failure;
  std::filesystem::create_directories(hostPath, failure);
  return failure;
}

}  // namespace

NSFileManager& NSFileManager::defaultManager() {
  static NSFileManager manager;
  return manager;
}

std::optional<NSDirectoryContents> NSFileManager::contentsOfDirectoryAtPath(std::string_view path,
                                                                            Ref<NSError>* error) const {
  std::error_code failure;
  auto folder = openFolder(path, failure);
  if (!succeeded(failure, Attempt::list, path, error)) return std::nullopt;
  return NSDirectoryContents(std::move(folder));
}

bool NSFileManager::fileExistsAtPath(std::string_view path) const {
  bool isDirectory = false;
  return fileExistsAtPathIsDirectory(path, isDirectory);
}

bool NSFileManager::fileExistsAtPathIsDirectory(std::string_view path, bool& isDirectory) const {
  auto* folder = OpenFolder::holding(path);
  const FileLook look = folder ? folder->look(path) : lookAfresh(path);
  isDirectory = look.isDirectory;
  return look.exists;
}

bool NSFileManager::isReadableFileAtPath(std::string_view path) const {
  const auto location = mounts().resolve(path);
  if (!location) return mounts().isOnTheWay(path);
  return faccessat(AT_FDCWD, location->hostPath.c_str(), R_OK, AT_EACCESS) == 0;
}

std::optional<NSFileAttributes> NSFileManager::attributesOfItemAtPath(std::string_view path) const {
  if (auto* folder = OpenFolder::holding(path)) return folder->takeAttributes(path);
  return lookAfresh(path).attributes;
}

bool NSFileManager::removeItemAtPath(std::string_view path, Ref<NSError>* error) const {
  std::error_code failure;
  const auto hostPath = writableHostPath(path, failure);
  if (!failure) failure = removeWithContents(hostPath);
  return succeeded(failure, Attempt::remove, path, error);
}

bool NSFileManager::createDirectoryAtPathWithIntermediateDirectories(std::string_view path,
                                                                     Ref<NSError>* error) const {
  bool isDirectory = false;
  if (fileExistsAtPathIsDirectory(path, isDirectory) && isDirectory) return true;
  std::error_code failure;
  const auto hostPath = writableHostPath(path, failure);
  if (!failure) failure = createWithFoldersOnTheWay(hostPath);
  return succeeded(failure, Attempt::create, path, error);
}

}  // namespace quaverly
