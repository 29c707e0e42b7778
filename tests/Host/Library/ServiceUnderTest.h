#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Host/Library/DownloadService.h"
#include "Support/TemporaryFolder.h"
#include "Support/TestDevice.h"

namespace quaverly::library {

/// What a service told.
class Recorder : public DownloadObserver {
 public:
  void downloadAdded(const DownloadRecord& record) override { added.push_back(record.id); }
  void downloadStarted(const DownloadRecord& record) override { started.push_back(record.id); }
  void downloadProgressed(DownloadID, const DownloadProgress& value) override { progress.push_back(value); }
  void downloadEnded(const DownloadRecord& record) override { ended.push_back(record); }
  void serviceWaits(const std::string& why) override { waits.push_back(why); }
  void serviceBecameIdle() override { ++idle; }
  void serviceStopped(const std::vector<DownloadRecord>& records) override {
    notDone = records;
    stopped = true;
  }

  std::vector<DownloadID> added, started;
  std::vector<DownloadProgress> progress;
  std::vector<DownloadRecord> ended;
  std::vector<std::string> waits;
  unsigned idle = 0;
  std::vector<DownloadRecord> notDone;
  bool stopped = false;
};

/// How a song is offered.
struct Offered {
  std::string devicePath;
  SongTags tags;
  std::string artworkURL = "";
};

/// A download service on temporary folders, with the real import server, in a network of its own.
class ServiceUnderTest {
 public:
  ServiceUnderTest();
  ~ServiceUnderTest();

  DownloadService& service() { return *_service; }
  Recorder& recorder() { return _recorder; }
  test::TestDevice& device() { return _device; }
  OutsideFiles& outsideFiles() { return _outsideFiles; }
  const test::TemporaryFolder& folder() const { return _folder; }
  LibrarySettings settings() const { return {_folder / "data", _folder / "music"}; }

  /// Ends the service and starts another one on the same folders.
  void restart();
  void restart(SongServer& server);
  void end() { _service.reset(); }

  /// A download of a song, as the importer makes it; fetched from `server` instead, if given.
  static Ref<SSDownload> download(const Offered& offered,
                                  const std::string& server = "http://localhost:8080");
  void add(const Offered& offered) { _service->addDownloads({download(offered)}); }
  /// Adds a song and waits until it has ended.
  DownloadRecord import(const Offered& offered);
  DownloadRecord import(const Ref<SSDownload>& download);

  /// Runs the main loop until `condition` holds; fails the test when that takes too long.
  static void runUntil(const std::function<bool()>& condition);
  void runUntilEnded(size_t count);

  /// The files below the library, sorted, without the hidden ones; and all of them.
  std::vector<std::string> songs() const;
  std::vector<std::string> allFiles() const;
  std::string inLibrary(const std::string& name) const { return settings().libraryFolder + "/" + name; }

 private:
  test::TestDevice _device;
  test::TemporaryFolder _folder;
  OutsideFiles _outsideFiles;
  ImportServer _importServer;
  Recorder _recorder;
  std::unique_ptr<DownloadService> _service;
};

/// A song of silent frames that no other seed has, with or without tags of its own.
std::string songBytes(unsigned seed, const std::string& tag = "");

SongTags tagsOf(const std::string& path);

}  // namespace quaverly::library
