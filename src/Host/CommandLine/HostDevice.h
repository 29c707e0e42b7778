#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "Host/CommandLine/Options.h"
#include "Host/Library/LibrarySettings.h"
#include "Host/Library/OutsideFiles.h"
#include "Host/Library/Result.h"

namespace quaverly::commandline {

/// Absolute, without "." and "..", without a slash at the end; links stay.
std::string absolutePath(const std::string& path);

/// The device that a command runs on: the platform's, filled from this machine and the common options, with a
/// temporary folder of its own. One at a time, made first on the main thread.
class HostDevice {
 public:
  /// Throws std::filesystem::filesystem_error when there can be no temporary folder.
  explicit HostDevice(const CommonOptions& options);
  /// Lets messages to other programs out first.
  ~HostDevice();
  HostDevice(const HostDevice&) = delete;
  HostDevice& operator=(const HostDevice&) = delete;

  /// Puts the user's own engine files, which can be switched, in place of those that come with the program.
  library::MaybeFailure provideEngines() const;

  /// Keeps what people enter into the rows of panes in the data folder.
  library::MaybeFailure providePreferences() const;

  /// Lets a support mail read which packages are installed.
  void providePackageStatus() const;

  static constexpr const char* mediaPath = "/var/mobile/Media";
  static constexpr const char* bundlePath = "/Library/PreferenceBundles/QuaverlySettings.bundle";

  const std::filesystem::path& media() const { return _media; }
  const library::LibrarySettings& librarySettings() const { return _settings; }
  library::OutsideFiles& outsideFiles() { return _outsideFiles; }

 private:
  std::filesystem::path _media;
  library::LibrarySettings _settings;
  std::filesystem::path _temporary;
  library::OutsideFiles _outsideFiles;
};

/// A file that was named on the command line, where the device sees it.
struct DeviceFile {
  std::string devicePath;
  std::shared_ptr<const library::OutsideFile> outside;  ///< keeps the path of a file from elsewhere; or null
};

/// Gives a file a device path. Fails, with a sentence for people, for what is missing, unreadable, no file or
/// empty, and for a name that is not UTF-8.
library::Result<DeviceFile> reachFile(const std::string& file, library::OutsideFiles& outsideFiles);

}  // namespace quaverly::commandline
