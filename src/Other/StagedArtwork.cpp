#include "Other/StagedArtwork.h"

#include "Platform/Foundation/NSFileManager.h"
#include "Platform/Foundation/NSLog.h"

namespace quaverly {
namespace {

constexpr const char* directory = "/var/mobile/Media/Quaverly/tmp/";

}  // namespace

std::string temporaryArtworkDirectory() {
  Ref<NSError> error;
  if (!NSFileManager::defaultManager().createDirectoryAtPathWithIntermediateDirectories(directory, &error)) {
    NSLog(std::string("Failed to create directory \"") + directory +
          "\". Error: " + (error ? error->description() : "(null)"));
  }
  return directory;
}

std::string stagedArtworkURL(const std::string& path) {
  return "file://localhost/private" + path;
}

}  // namespace quaverly
