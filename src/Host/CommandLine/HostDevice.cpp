#include "Host/CommandLine/HostDevice.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <random>

#include "Host/Environment/DataFolder.h"
#include "Host/Environment/DeviceFacts.h"
#include "Host/Environment/HostWords.h"
#include "Host/Environment/MachineFacts.h"
#include "Platform/AppSupport/CPDistributedMessagingCenter.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::commandline {
namespace {

namespace fs = std::filesystem;
using library::Failure;

fs::path makeTemporaryFolder() {
  std::string pattern = (fs::temp_directory_path() / "quaverly-XXXXXX").string();
  if (!mkdtemp(pattern.data())) {
    throw fs::filesystem_error("no temporary folder", pattern,
                               std::error_code(errno, std::generic_category()));
  }
  return pattern;
}

void fillFacts(Device& device, const fs::path& bundle) {
  device.clock = NSRunLoop::mainRunLoop().clock();
  device.localeIdentifier = host::localeIdentifier(host::processEnvironment);
  device.timeZoneName = host::timeZoneName(host::processEnvironment);
  device.preferredLanguages = host::preferredLanguages(host::processEnvironment, bundle);
  device.systemWords = host::systemWord;
  device.systemVersion = host::systemVersion();
  device.fontFiles = host::fontFiles();
  device.machine = host::machineName();
  device.uniqueIdentifier = host::deviceIdentity();
  device.messageBusAddress = host::messageBusAddress(host::processEnvironment);
  device.random = [] {
    static std::random_device source;
    return static_cast<uint32_t>(source());
  };
}

library::MaybeFailure problemWith(const std::string& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) {
    if (errno == ENOENT) return Failure{"There is no such file. Check the name."};
    return Failure{std::string("It cannot be reached (") + std::strerror(errno) + ")."};
  }
  if (S_ISDIR(status.st_mode))
    return Failure{"This is a folder. Name the files in it, for example with /*.mp3."};
  if (!S_ISREG(status.st_mode)) return Failure{"This is no regular file."};
  if (access(file.c_str(), R_OK) != 0) return Failure{"You may not read it. Change its permissions."};
  if (status.st_size == 0) return Failure{"The file is empty. Get it anew."};
  return std::nullopt;
}

}  // namespace

std::string absolutePath(const std::string& path) {
  const fs::path normal = fs::absolute(path).lexically_normal();
  return normal.has_filename() || normal == normal.root_path() ? normal : normal.parent_path();
}

HostDevice::HostDevice(const CommonOptions& options)
    : _media(options.media), _settings{options.data, options.library}, _temporary(makeTemporaryFolder()) {
  Device device;
  const fs::path bundle = host::bundleFolder();
  device.mounts.mount(mediaPath, _media, MountTable::Access::readOnly);
  device.mounts.mount("/var/mobile/Media/Quaverly/tmp", _temporary, MountTable::Access::readWrite);
  device.mounts.mount(bundlePath, bundle, MountTable::Access::readOnly);
  fillFacts(device, bundle);
  Device::current() = device;
}

HostDevice::~HostDevice() {
  CPDistributedMessagingCenter::finishSending();
  std::error_code ignored;
  fs::remove_all(_temporary, ignored);
}

library::MaybeFailure HostDevice::provideEngines() const {
  const fs::path own = fs::path(_settings.dataFolder) / "engines";
  auto error = host::makeDataFolder(_settings.dataFolder);
  if (!error) error = host::provideEngines(host::bundleFolder() / "engines", own);
  if (error) return Failure{"There can be no engines in " + own.string() + " (" + error.message() + ")."};
  Device::current().mounts.mount(std::string(bundlePath) + "/engines", own, MountTable::Access::readWrite);
  return std::nullopt;
}

library::MaybeFailure HostDevice::providePreferences() const {
  const fs::path folder = fs::path(_settings.dataFolder) / "preferences";
  auto error = host::makeDataFolder(_settings.dataFolder);
  if (!error) fs::create_directory(folder, error);
  if (error)
    return Failure{"No preferences can be kept in " + folder.string() + " (" + error.message() + ")."};
  Device::current().mounts.mount("/var/mobile/Library/Preferences", folder, MountTable::Access::readWrite);
  return std::nullopt;
}

void HostDevice::providePackageStatus() const {
  constexpr const char* status = "/var/lib/dpkg/status";
  Device::current().mounts.mount(status, status, MountTable::Access::readOnly);
}

library::Result<DeviceFile> reachFile(const std::string& file, library::OutsideFiles& outsideFiles) {
  if (const auto problem = problemWith(file)) return *problem;
  const std::string path = absolutePath(file);
  if (const auto devicePath = library::mountedDevicePath(path); devicePath && NSStringIsUTF8(*devicePath)) {
    return DeviceFile{*devicePath, nullptr};
  }
  auto outside = outsideFiles.mount(path);
  if (!outside) return outside.failure();
  return DeviceFile{(*outside)->devicePath(), *outside};
}

}  // namespace quaverly::commandline
