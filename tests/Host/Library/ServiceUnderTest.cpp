#include "Host/Library/ServiceUnderTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "Host/Library/FileDescriptor.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Foundation/NSString.h"
#include "Support/NetworkNamespace.h"
#include "Support/TagBytes.h"

namespace quaverly::library {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds patience{30};

std::vector<std::string> filesBelow(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code none;
  for (const auto& entry : fs::recursive_directory_iterator(folder, none)) {
    if (!entry.is_directory()) names.push_back(fs::relative(entry.path(), folder));
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace

ServiceUnderTest::ServiceUnderTest() {
  test::enterOwnNetwork();
  restart();
}

ServiceUnderTest::~ServiceUnderTest() = default;

void ServiceUnderTest::restart() {
  restart(_importServer);
}

void ServiceUnderTest::restart(SongServer& server) {
  _service.reset();
  _recorder = {};
  auto service = DownloadService::open(settings(), _outsideFiles, server);
  ASSERT_TRUE(service) << service.failure().reason;
  _service = *std::move(service);
  _service->addObserver(&_recorder);
}

Ref<SSDownload> ServiceUnderTest::download(const Offered& offered, const std::string& server) {
  auto metadata = make<SSDownloadMetadata>();
  metadata->initWithKind("song");
  if (offered.tags.title) metadata->setTitle(offered.tags.title);
  if (offered.tags.artist) metadata->setArtistName(offered.tags.artist);
  if (offered.tags.album) metadata->setCollectionName(offered.tags.album);
  metadata->setIndexInCollection(offered.tags.trackNumber);
  metadata->setReleaseYear(offered.tags.year);
  if (!offered.artworkURL.empty()) metadata->setFullSizeImageURL(NSURL::URLWithString(offered.artworkURL));
  metadata->setGenre("");
  const auto url =
      server + "/qvtolmarinimporter.mp3?" + NSStringByAddingPercentEscapesForQuery(offered.devicePath);
  auto asset = make<SSDownloadAsset>();
  asset->initWithURLRequest(NSURLRequest(*NSURL::URLWithString(url)));
  auto download = make<SSDownload>();
  download->initWithDownloadMetadata(metadata);
  download->addAssetForType(asset, "media");
  return download;
}

DownloadRecord ServiceUnderTest::import(const Offered& offered) {
  return import(download(offered));
}

DownloadRecord ServiceUnderTest::import(const Ref<SSDownload>& download) {
  const size_t before = _recorder.ended.size();
  _service->addDownloads({download});
  runUntilEnded(before + 1);
  return _recorder.ended.size() > before ? _recorder.ended.back() : DownloadRecord{};
}

void ServiceUnderTest::runUntil(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) FAIL() << "nothing more happened";
    NSRunLoop::mainRunLoop().runOnce(std::chrono::milliseconds(20));
  }
}

void ServiceUnderTest::runUntilEnded(size_t count) {
  runUntil([&] { return _recorder.ended.size() >= count; });
}

std::vector<std::string> ServiceUnderTest::allFiles() const {
  return filesBelow(settings().libraryFolder);
}

std::vector<std::string> ServiceUnderTest::songs() const {
  auto names = allFiles();
  std::erase_if(names, [](const auto& name) { return name.starts_with('.'); });
  return names;
}

std::string songBytes(unsigned seed, const std::string& tag) {
  std::string audio = test::mpegFrames(40);
  // Into the second frame's data, where a decoder hears next to nothing and a hash everything.
  for (unsigned i = 0; i < 4; ++i) audio[600 + i] = static_cast<char>(seed >> (7 * i) & 0x7f);
  return tag + audio;
}

SongTags tagsOf(const std::string& path) {
  const auto file = FileDescriptor::openForReading(path);
  const auto song = inspectSong(file.get());
  if (!song) ADD_FAILURE() << path << " is no song";
  return song ? song->tags : SongTags{};
}

}  // namespace quaverly::library
