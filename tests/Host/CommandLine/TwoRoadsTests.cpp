#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "Controllers/ImportAudioController.h"
#include "Host/CommandLine/SongHandOver.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/StoreServices/SSDownloadManager.h"
#include "Platform/UIKit/UIApplication.h"
#include "Support/NetworkNamespace.h"
#include "Support/TemporaryFolder.h"

namespace quaverly {
namespace {

namespace fs = std::filesystem;

constexpr const char* lantern = "lantern.mp3";
constexpr const char* roofs = "Über den Dächern.mp3";

/// A download as it stood when it was handed over, and the cover that was staged at that moment.
struct HandedOver {
  std::vector<std::pair<std::string, SSDownloadMetadata::Value>> values;
  std::string cover;
};

class CopyingService : public SSDownloadService {
 public:
  CopyingService() { SSDownloadManager::registerService(this); }
  ~CopyingService() override {
    for (const auto& download : std::exchange(_kept, {})) download->complete();
    SSDownloadManager::registerService(nullptr);
  }

  void addDownloads(const std::vector<Ref<SSDownload>>& downloads) override {
    for (const auto& download : downloads) {
      HandedOver copy;
      for (const auto& [name, value] : download->metadata()->assignments()) {
        // Moments differ; nothing else may.
        if (name != "purchaseDate") copy.values.emplace_back(name, value);
      }
      if (const auto url = download->metadata()->fullSizeImageURL()) {
        const auto data = NSData::dataWithContentsOfURL(*url);
        copy.cover = data ? std::string(data->text()) : "unreadable";
      }
      copies.push_back(std::move(copy));
      _kept.push_back(download);
    }
  }

  std::vector<HandedOver> copies;

 private:
  std::vector<Ref<SSDownload>> _kept;
};

commandline::CommonOptions optionsFor(const test::TemporaryFolder& folder) {
  commandline::CommonOptions options;
  options.media = folder / "media";
  options.library = folder / "library";
  options.data = folder / "data";
  return options;
}

class TwoRoads : public testing::Test {
 protected:
  TwoRoads() {
    test::enterOwnNetwork();
    for (const char* name : {lantern, roofs})
      fs::copy_file(fs::path(QUAVERLY_SOURCE_DIR "/samples") / name, media / name);
    Device::current().random = [] { return 123'456'789U; };
    browser->init();
    window->makeKeyAndVisible();
    window->setRootViewController(make<UINavigationController>(browser));
    UIApplication::sharedApplication().layoutIfNeeded();
  }
  ~TwoRoads() override { UIApplication::sharedApplication().setKeyWindow(nullptr); }

  HandedOver byCommandLine(const char* name, commandline::ImportOptions options = {}) {
    const commandline::Console console(commandline::Form::text, commandline::Loudness::quiet);
    commandline::SongHandOver handOver(device, options, console);
    EXPECT_FALSE(handOver.prepareArtwork());
    EXPECT_FALSE(handOver.handOver(media / name));
    return service.copies.back();
  }

  /// Shows the song in the editor, lets somebody type, and imports.
  HandedOver byEditor(const char* name, const std::function<void(CustomImportViewController&)>& type = {}) {
    auto& editor = *browser->importController();
    const auto& items = browser->fileItems();
    for (size_t row = 0; row < items.size(); ++row) {
      if (NSStringLastPathComponent(*items[row].path()) == name) browser->tableView()->tapRow({0, row});
    }
    UIApplication::sharedApplication().layoutIfNeeded();
    if (type) type(editor);
    editor.import();
    return service.copies.back();
  }

  test::TemporaryFolder folder;
  fs::path media = folder.makeFolder("media");
  commandline::HostDevice device{optionsFor(folder)};
  CopyingService service;
  Ref<UIWindow> window = make<UIWindow>(CGRect{0, 0, 375, 667});
  Ref<ImportAudioController> browser = make<ImportAudioController>();
};

TEST_F(TwoRoads, TheSameSongGivesEqualDownloads) {
  const auto first = byCommandLine(lantern);
  const auto second = byEditor(lantern);
  EXPECT_EQ(first.values, second.values);
  EXPECT_EQ(first.cover, second.cover);
  EXPECT_THAT(first.cover, testing::StartsWith("\xff\xd8"));
}

TEST_F(TwoRoads, TheSameEditsGiveEqualDownloads) {
  commandline::ImportOptions options;
  options.title = "A title";
  options.artist = "An artist";
  options.album = "";
  options.year = "1999";
  options.track = "7";
  const auto first = byCommandLine(roofs, options);
  const auto second = byEditor(roofs, [](CustomImportViewController& editor) {
    editor.currentCell()->titleLabel()->type("A title");
    editor.artistLabelHeader()->type("An artist");
    editor.albumLabelHeader()->type("");
    editor.yearLabelHeader()->type("1999");
    editor.currentCell()->indexLabel()->type("7");
  });
  EXPECT_EQ(first.values, second.values);
}

TEST_F(TwoRoads, ASongWithoutTagsGivesEqualDownloads) {
  std::string bare = test::contentsOf(media / lantern);
  bare.erase(0, bare.find("\xff\xfb"));
  std::ofstream(media / "bare.mp3", std::ios::binary) << bare;
  browser->setItems(browser->ItemsInFolder("/var/mobile/Media"));
  const auto first = byCommandLine("bare.mp3");
  const auto second = byEditor("bare.mp3");
  EXPECT_EQ(first.values, second.values);
  EXPECT_EQ(first.cover, "");
}

TEST_F(TwoRoads, EachSongKeepsItsOwnCoverByEitherRoad) {
  const auto lanternByLine = byCommandLine(lantern).cover;
  const auto roofsByLine = byCommandLine(roofs).cover;
  const auto lanternByEditor = byEditor(lantern).cover;
  const auto roofsByEditor = byEditor(roofs).cover;
  EXPECT_NE(lanternByLine, roofsByLine);
  EXPECT_EQ(lanternByLine, lanternByEditor);
  EXPECT_EQ(roofsByLine, roofsByEditor);
}

}  // namespace
}  // namespace quaverly
