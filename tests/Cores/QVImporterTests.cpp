#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "Cores/QVImporter.h"
#include "Platform/Foundation/NSClass.h"
#include "Support/KeptDownloads.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using testing::ElementsAre;

class QVImporterTest : public testing::Test {
 protected:
  QVImporterTest() {
    device.clock().setDate(Clock::Date(std::chrono::seconds(1'700'000'000)));
    importer->setDownloadRequest(NSURLRequest(*NSURL::URLWithString("/var/mobile/Media/a%20b.mp3")));
  }

  /// The metadata of the one download that `import` hands over, a line per setter.
  std::vector<std::string> imported() {
    importer->import();
    return service.lines(0);
  }
  Ref<SSDownloadMetadata> metadata() { return service.kept.at(0)->metadata(); }

  test::TestDevice device;
  test::KeptDownloads service;
  Ref<QVImporter> importer = make<QVImporter>();
};

TEST_F(QVImporterTest, SetsEveryValueInItsOrder) {
  importer->setTitle("T");
  importer->setArtist("A");
  importer->setAlbum("L");
  importer->setGenre("Ambient");
  importer->setThumbnail("file://localhost/private/var/mobile/t.jpg");
  importer->setArtwork("file://localhost/private/var/mobile/a.jpg");
  importer->setIndexInCollection("07");
  importer->setReleaseYear(" 1999x");
  importer->setItemID("12345678");
  EXPECT_THAT(
      imported(),
      ElementsAre(
          "kind \"song\"", "purchaseDate @1700000000",
          "primaryAssetURL <http://localhost:8080/qvtolmarinimporter.mp3?/var/mobile/Media/a%20b.mp3>",
          "shortDescription \"Imported with Quaverly by Ferrowin\"",
          "longDescription \"Imported with Quaverly by Ferrowin\"", "title \"T\"", "sortTitle \"T\"",
          "artistName \"A\"", "sortArtistName \"A\"", "collectionName \"L\"", "sortCollectionName \"L\"",
          "indexInCollection 7", "genre \"Ambient\"", "releaseYear 1999",
          "thumbnailImageURL <file://localhost/private/var/mobile/t.jpg>",
          "fullSizeImageURL <file://localhost/private/var/mobile/a.jpg>", "fileExtension \"mp3\"",
          "artworkIsPrerendered YES", "automaticDownload NO", "redownloadDownload NO", "compilation NO",
          "rental NO", "sample NO", "genre \"\"", "bundleIdentifier \"com.tolmarin.quaverly\"",
          "transactionIdentifier \"com.tolmarin.quaverly\"", "cancelDownloadURL <file:///>",
          "itemIdentifier 12345678"));
}

TEST_F(QVImporterTest, WithARequestAloneSetsNothingThatWasNotGiven) {
  EXPECT_THAT(
      imported(),
      ElementsAre(
          "kind \"song\"", "purchaseDate @1700000000",
          "primaryAssetURL <http://localhost:8080/qvtolmarinimporter.mp3?/var/mobile/Media/a%20b.mp3>",
          "shortDescription \"Imported with Quaverly by Ferrowin\"",
          "longDescription \"Imported with Quaverly by Ferrowin\"", "indexInCollection 0", "genre nothing",
          "releaseYear 0", "fileExtension \"mp3\"", "artworkIsPrerendered YES", "automaticDownload NO",
          "redownloadDownload NO", "compilation NO", "rental NO", "sample NO", "genre \"\"",
          "bundleIdentifier \"com.tolmarin.quaverly\"", "transactionIdentifier \"com.tolmarin.quaverly\"",
          "cancelDownloadURL <file:///>"));
}

TEST_F(QVImporterTest, EmptyTextsCountAsAbsent) {
  for (auto set : {&QVImporter::setTitle, &QVImporter::setArtist, &QVImporter::setAlbum,
                   &QVImporter::setArtwork, &QVImporter::setThumbnail, &QVImporter::setItemID}) {
    (importer.get()->*set)("");
  }
  imported();
  EXPECT_FALSE(metadata()->title() || metadata()->sortTitle());
  EXPECT_FALSE(metadata()->artistName() || metadata()->sortArtistName());
  EXPECT_FALSE(metadata()->collectionName() || metadata()->sortCollectionName());
  EXPECT_FALSE(metadata()->fullSizeImageURL() || metadata()->thumbnailImageURL());
  EXPECT_FALSE(metadata()->itemIdentifier());
}

TEST_F(QVImporterTest, AnEnteredGenreNeverReachesTheMetadata) {
  importer->setGenre("Ambient");
  imported();
  EXPECT_EQ(metadata()->genre(), "");
}

TEST_F(QVImporterTest, NumbersAreReadAsThePlatformReadsDecimalText) {
  const std::vector<std::pair<std::optional<std::string>, int32_t>> cases = {{std::nullopt, 0},
                                                                             {"", 0},
                                                                             {"x", 0},
                                                                             {"3/12", 3},
                                                                             {"-4", -4},
                                                                             {"+5", 5},
                                                                             {" 6", 6},
                                                                             {"2014-05", 2014},
                                                                             {"99999999999", INT32_MAX},
                                                                             {"-99999999999", INT32_MIN}};
  for (const auto& [text, number] : cases) {
    service.completeAll();
    importer = make<QVImporter>();
    importer->setIndexInCollection(text);
    importer->setReleaseYear(text);
    importer->import();
    EXPECT_EQ(metadata()->indexInCollection(), number) << text.value_or("nothing");
    EXPECT_EQ(metadata()->releaseYear(), number) << text.value_or("nothing");
  }
}

TEST_F(QVImporterTest, AnItemIdentifierNeedsAVersionThatReadsAsMoreThan83InSinglePrecision) {
  const std::vector<std::pair<std::string, bool>> cases = {{"8", false},   {"8.2", false},  {"8.29", false},
                                                           {"8.3", true},  {"8.3.1", true}, {"8.4", true},
                                                           {"10.0", true}, {"", false}};
  for (const auto& [version, takes] : cases) {
    service.completeAll();
    device->systemVersion = version;
    importer->setItemID("42");
    importer->import();
    EXPECT_EQ(metadata()->itemIdentifier().has_value(), takes) << version;
  }
}

TEST_F(QVImporterTest, RandomItemIdentifiersAreWorkedOutInSinglePrecision) {
  const std::vector<std::pair<uint32_t, std::string>> cases = {{0, "10000000"},
                                                               {1, "10000000"},
                                                               {0x80000000, "462897088"},
                                                               {0xFFFFFFFF, "915794176"},
                                                               {123456789, "36036624"}};
  for (const auto& [random, itemID] : cases) {
    device->random = [random = random] { return random; };
    EXPECT_EQ(QVImporter::randomItemID(), itemID) << random;
  }
}

TEST_F(QVImporterTest, TheURLEndsInMp3WhateverTheFileIs) {
  importer->setDownloadRequest(NSURLRequest(*NSURL::URLWithString("/var/mobile/Media/x.m4a")));
  imported();
  const std::string url = "http://localhost:8080/qvtolmarinimporter.mp3?/var/mobile/Media/x.m4a";
  EXPECT_EQ(importer->downloadRequest()->URL().absoluteString(), url);
  EXPECT_EQ(service.kept[0]->assetForType("media")->URLRequest()->URL().absoluteString(), url);
  EXPECT_EQ(metadata()->fileExtension(), "mp3");
}

TEST_F(QVImporterTest, HandsOverOneDownloadWithOneAsset) {
  importer->import();
  EXPECT_THAT(service.batches, ElementsAre(1U));
  EXPECT_TRUE(service.kept[0]->assetForType("media"));
  EXPECT_FALSE(service.kept[0]->assetForType("video"));
}

TEST_F(QVImporterTest, CompletionEndsTheLifeOfDownloadAndAsset) {
  importer->import();
  importer = nullptr;
  auto download = std::exchange(service.kept, {})[0];
  auto asset = download->assetForType("media");
  EXPECT_EQ(download->retainCount(), 2U);  // ours and the callback's
  EXPECT_EQ(asset->retainCount(), 3U);     // ours, the download's and the callback's
  download->complete();
  EXPECT_EQ(download->retainCount(), 1U);
  EXPECT_EQ(asset->retainCount(), 2U);
  download = nullptr;
  EXPECT_EQ(asset->retainCount(), 1U);
}

TEST_F(QVImporterTest, WithoutTheFrameworkItDoesNothing) {
  device->absentFrameworks.insert(StoreServicesFramework);
  importer->import();
  EXPECT_TRUE(service.kept.empty());
}

TEST_F(QVImporterTest, WithoutAnyOneOfTheClassesItDoesNothing) {
  for (const auto* name : {"SSDownloadMetadata", "SSDownloadManager", "SSDownloadAsset", "SSDownload"}) {
    device->absentClasses = {name};
    importer->import();
    EXPECT_TRUE(service.kept.empty()) << name;
  }
}

TEST_F(QVImporterTest, UnloadsTheFrameworkWhenItIsDone) {
  importer->import();
  EXPECT_EQ(NSClassFromString("SSDownload"), nullptr);
}

}  // namespace
}  // namespace quaverly
