// The import road below the command line, as a program of its own that can be killed:
//
//     ImportDriver DATA LIBRARY [FILE…]
//
// resumes what was interrupted, imports the files, each titled by its name, and prints a line per download.

#include <cstdio>
#include <filesystem>
#include <span>
#include <string>

#include "Host/Library/DownloadService.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::library {
namespace {

class Printer : public DownloadObserver {
 public:
  void downloadEnded(const DownloadRecord& record) override {
    std::printf("%s %s %s\n", nameOf(record.state), record.libraryPath.c_str(), record.reason.c_str());
    failed |= record.state == DownloadState::failed;
  }
  void serviceBecameIdle() override { NSRunLoop::mainRunLoop().stop(); }

  bool failed = false;
};

Ref<SSDownload> downloadOf(const std::string& devicePath) {
  auto metadata = make<SSDownloadMetadata>();
  metadata->initWithKind("song");
  metadata->setTitle(std::filesystem::path(devicePath).stem());
  metadata->setArtistName("Artist");
  metadata->setCollectionName("Album");
  auto asset = make<SSDownloadAsset>();
  asset->initWithURLRequest(NSURLRequest(*NSURL::URLWithString(
      "http://localhost:8080/qvtolmarinimporter.mp3?" + NSStringByAddingPercentEscapesForQuery(devicePath))));
  auto download = make<SSDownload>();
  download->initWithDownloadMetadata(metadata);
  download->addAssetForType(asset, "media");
  return download;
}

int run(const LibrarySettings& settings, std::span<char*> files) {
  Device::current().clock = NSRunLoop::mainRunLoop().clock();
  OutsideFiles outsideFiles;
  ImportServer server;
  const auto service = DownloadService::open(settings, outsideFiles, server);
  if (!service) return std::fprintf(stderr, "%s\n", service.failure().reason.c_str()), 1;
  Printer printer;
  (*service)->addObserver(&printer);
  (*service)->resumeInterrupted();
  for (const auto* path : files) {
    const auto file = outsideFiles.mount(path);
    (*service)->addDownloads({downloadOf((*file)->devicePath())});
  }
  NSRunLoop::mainRunLoop().run();
  return printer.failed ? 1 : 0;
}

}  // namespace
}  // namespace quaverly::library

int main(int count, char** arguments) {
  if (count < 3) return 2;
  return quaverly::library::run({arguments[1], arguments[2]}, std::span(arguments + 3, arguments + count));
}
