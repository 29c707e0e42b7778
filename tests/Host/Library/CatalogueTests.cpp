#include "Host/Library/Catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sqlite3.h>
#include <sys/stat.h>

#include <filesystem>
#include <limits>
#include <thread>

#include "Support/TemporaryFolder.h"

namespace quaverly::library {
namespace {

using test::TemporaryFolder;
using testing::HasSubstr;

class CatalogueTest : public testing::Test {
 protected:
  Catalogue opened() {
    auto catalogue = Catalogue::open(_data);
    EXPECT_TRUE(catalogue) << catalogue.failure().reason;
    return std::move(*catalogue);
  }
  void runSQL(const char* sql) const {
    sqlite3* database = nullptr;
    sqlite3_open((_data + "/catalogue.sqlite").c_str(), &database);
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    sqlite3_close(database);
  }
  static DownloadRecord someDownload() {
    DownloadRecord record;
    record.sourcePath = "/media/a b\xff.mp3";  // a path is bytes
    record.devicePath = "/var/mobile/Media/a b.mp3";
    record.assetURL = "http://localhost:8080/qvtolmarinimporter.mp3?/var/mobile/Media/a%20b.mp3";
    record.artwork = "picture";
    record.artworkKind = ArtworkChange::Kind::replace;
    record.metadata.title = "T\u00eftle";
    record.metadata.genre = "";
    record.metadata.indexInCollection = 7;
    record.metadata.sample = false;
    record.metadata.purchaseDate = Clock::Date(std::chrono::milliseconds(1'700'000'000'123));
    return record;
  }
  static SongRecord someSong(const std::string& path, DownloadID download) {
    SongRecord song;
    song.path = path;
    song.tags = {.title = "Title", .artist = std::nullopt, .album = "Album", .trackNumber = 3, .year = 1999};
    for (size_t i = 0; i < song.audio.bytes.size(); ++i) song.audio.bytes[i] = static_cast<uint8_t>(i * 17);
    song.cover = "c0ffee";
    song.size = uint64_t{5} << 32;
    song.download = download;
    return song;
  }

  TemporaryFolder _folder;
  std::string _data = _folder / "home/data";
};

TEST_F(CatalogueTest, MakesItsFolderForItsOwnerAlone) {
  opened();
  struct stat attributes {};
  ASSERT_EQ(stat(_data.c_str(), &attributes), 0);
  EXPECT_EQ(attributes.st_mode & 07777U, 0700U);
}

TEST_F(CatalogueTest, RemembersADownloadAsItWasAdded) {
  const auto added = someDownload();
  DownloadID id = 0;
  {
    auto catalogue = opened();
    id = *catalogue.add(added);
  }
  auto catalogue = opened();
  const auto record = **catalogue.download(id);
  EXPECT_EQ(record.state, DownloadState::queued);
  EXPECT_EQ(record.sourcePath, added.sourcePath);
  EXPECT_EQ(record.devicePath, added.devicePath);
  EXPECT_EQ(record.assetURL, added.assetURL);
  EXPECT_EQ(record.artwork, added.artwork);
  EXPECT_EQ(record.artworkKind, added.artworkKind);
  EXPECT_EQ(record.metadata, added.metadata);
  EXPECT_FALSE(record.ended);
  EXPECT_NEAR(static_cast<double>(std::chrono::system_clock::to_time_t(record.added)),
              static_cast<double>(time(nullptr)), 5);
}

TEST_F(CatalogueTest, ListsTheNewestFirstAndTheUnfinishedInTheirOrder) {
  auto catalogue = opened();
  for (const auto state : {DownloadState::queued, DownloadState::fetching, DownloadState::filed,
                           DownloadState::failed, DownloadState::placing, DownloadState::duplicate}) {
    auto record = someDownload();
    record.id = *catalogue.add(record);
    record.state = state;
    EXPECT_FALSE(catalogue.update(record));
  }
  std::vector<DownloadID> ids, unfinished;
  for (const auto& record : *catalogue.downloads()) ids.push_back(record.id);
  for (const auto& record : *catalogue.unfinishedDownloads()) unfinished.push_back(record.id);
  EXPECT_THAT(ids, testing::ElementsAre(6, 5, 4, 3, 2, 1));
  EXPECT_THAT(unfinished, testing::ElementsAre(1, 2, 5));
}

TEST_F(CatalogueTest, AFinalStateHasATime) {
  auto catalogue = opened();
  auto record = someDownload();
  record.id = *catalogue.add(record);
  record.state = DownloadState::failed;
  record.reason = "It broke.";
  record.bytes = 12345;
  EXPECT_FALSE(catalogue.update(record));
  EXPECT_TRUE((**catalogue.download(record.id)).ended);
  EXPECT_EQ((**catalogue.download(record.id)).reason, "It broke.");
  EXPECT_EQ((**catalogue.download(record.id)).bytes, 12345U);
  record.state = DownloadState::queued;
  EXPECT_FALSE(catalogue.update(record));
  EXPECT_FALSE((**catalogue.download(record.id)).ended);
}

TEST_F(CatalogueTest, AnIntendedSongIsNoSongUntilItIsFiled) {
  auto catalogue = opened();
  auto record = someDownload();
  record.id = *catalogue.add(record);
  const auto song = someSong("/music/a.mp3", record.id);
  record.state = DownloadState::placing;
  ASSERT_FALSE(catalogue.intend(record, song));
  EXPECT_TRUE(catalogue.songs()->empty());
  EXPECT_TRUE(catalogue.songsWithAudio(song.audio)->empty());
  const auto intention = **catalogue.intention(record.id);
  EXPECT_EQ(intention.path, song.path);
  EXPECT_EQ(intention.tags, song.tags);
  EXPECT_EQ(intention.audio, song.audio);
  EXPECT_EQ(intention.cover, song.cover);
  EXPECT_EQ(intention.size, song.size);
  record.state = DownloadState::filed;
  ASSERT_FALSE(catalogue.file(record, intention));
  ASSERT_EQ(catalogue.songs()->size(), 1U);
  EXPECT_EQ(catalogue.songsWithAudio(song.audio)->front().path, song.path);
  EXPECT_FALSE(*catalogue.intention(record.id));
  EXPECT_EQ((**catalogue.download(record.id)).state, DownloadState::filed);
}

TEST_F(CatalogueTest, AFailureForgetsTheIntention) {
  auto catalogue = opened();
  auto record = someDownload();
  record.id = *catalogue.add(record);
  record.state = DownloadState::placing;
  ASSERT_FALSE(catalogue.intend(record, someSong("/music/a.mp3", record.id)));
  ASSERT_FALSE(catalogue.intend(record, someSong("/music/a (2).mp3", record.id)));
  EXPECT_EQ((**catalogue.intention(record.id)).path, "/music/a (2).mp3");
  record.state = DownloadState::failed;
  ASSERT_FALSE(catalogue.update(record));
  EXPECT_FALSE(*catalogue.intention(record.id));
}

TEST_F(CatalogueTest, ANewSongAtAPathDisplacesTheOneThatIsGone) {
  auto catalogue = opened();
  for (const DownloadID id : {1, 2}) {
    auto record = someDownload();
    record.id = *catalogue.add(record);
    ASSERT_EQ(record.id, id);
    record.state = DownloadState::filed;
    ASSERT_FALSE(catalogue.file(record, someSong("/music/a.mp3", id)));
  }
  ASSERT_EQ(catalogue.songs()->size(), 1U);
  EXPECT_EQ(catalogue.songs()->front().download, 2);
}

TEST_F(CatalogueTest, TellsTheNewestDownloadsAlone) {
  auto catalogue = opened();
  for (int i = 0; i < 5; ++i) EXPECT_TRUE(catalogue.add(someDownload()));
  const auto latest = catalogue.latestDownloads(2);
  ASSERT_EQ(latest->size(), 2U);
  EXPECT_EQ(latest->at(0).id, 5);
  EXPECT_EQ(latest->at(1).id, 4);
}

TEST_F(CatalogueTest, TellsSongsInPartsAndOneByOne) {
  auto catalogue = opened();
  for (int i = 0; i < 5; ++i) {
    auto record = someDownload();
    record.id = *catalogue.add(record);
    record.state = DownloadState::filed;
    EXPECT_FALSE(catalogue.file(record, someSong("/m/" + std::to_string(i), record.id)));
  }
  const auto first = catalogue.songsBefore(std::numeric_limits<int64_t>::max(), 3);
  ASSERT_EQ(first->size(), 3U);
  EXPECT_EQ(first->at(0).path, "/m/4");
  const auto rest = catalogue.songsBefore(first->back().id, 3);
  ASSERT_EQ(rest->size(), 2U);
  EXPECT_EQ(rest->back().path, "/m/0");
  EXPECT_TRUE(catalogue.songsBefore(rest->back().id, 3)->empty());
  EXPECT_EQ((*catalogue.song(rest->back().id))->path, "/m/0");
  EXPECT_EQ((*catalogue.songOfDownload(2))->path, "/m/1");
  EXPECT_FALSE(*catalogue.song(999));
  EXPECT_FALSE(*catalogue.songOfDownload(999));
}

TEST_F(CatalogueTest, ACoverIsNeededUntilItsSongIsFiled) {
  auto catalogue = opened();
  auto record = someDownload();
  record.id = *catalogue.add(record);
  EXPECT_TRUE(*catalogue.needsArtwork("picture"));
  EXPECT_FALSE(*catalogue.needsArtwork("another"));
  record.state = DownloadState::failed;
  ASSERT_FALSE(catalogue.update(record));
  EXPECT_TRUE(*catalogue.needsArtwork("picture"));
  record.state = DownloadState::duplicate;
  ASSERT_FALSE(catalogue.update(record));
  EXPECT_FALSE(*catalogue.needsArtwork("picture"));
}

TEST_F(CatalogueTest, WhatFailsInATransactionIsNotStored) {
  auto catalogue = opened();
  const auto failure = catalogue.transact([&]() -> MaybeFailure {
    EXPECT_TRUE(catalogue.add(someDownload()));
    return Failure{"Changed my mind."};
  });
  EXPECT_EQ(failure->reason, "Changed my mind.");
  EXPECT_TRUE(catalogue.downloads()->empty());
  EXPECT_TRUE(catalogue.add(someDownload()));
}

TEST_F(CatalogueTest, SeveralMayWriteAtOnce) {
  opened();
  const auto addMany = [this] {
    auto catalogue = opened();
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(catalogue.add(someDownload()));
  };
  std::thread other(addMany);
  addMany();
  other.join();
  EXPECT_EQ(opened().downloads()->size(), 200U);
}

TEST_F(CatalogueTest, SeveralMayMakeItAtOnce) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) threads.emplace_back([this] { opened(); });
  for (auto& thread : threads) thread.join();
}

TEST_F(CatalogueTest, RefusesTheCatalogueOfANewerVersion) {
  opened();
  runSQL("PRAGMA user_version = 2");
  const auto catalogue = Catalogue::open(_data);
  ASSERT_FALSE(catalogue);
  EXPECT_THAT(catalogue.failure().reason, HasSubstr("newer version"));
}

TEST_F(CatalogueTest, SaysThatADamagedFileIsDamagedAndWhatToDo) {
  std::filesystem::create_directories(_data);
  _folder.write("home/data/catalogue.sqlite", std::string(10'000, 'x'));
  const auto catalogue = Catalogue::open(_data);
  ASSERT_FALSE(catalogue);
  EXPECT_THAT(catalogue.failure().reason, HasSubstr(_data + "/catalogue.sqlite is damaged. Move it away"));
}

TEST_F(CatalogueTest, DamagedPagesAreFailuresAndNoCrash) {
  {
    auto catalogue = opened();
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(catalogue.add(someDownload()));
  }
  auto bytes = test::contentsOf(_data + "/catalogue.sqlite");
  ASSERT_GT(bytes.size(), 40'000U);
  std::fill(bytes.begin() + 4096, bytes.end(), '\xa5');
  _folder.write("home/data/catalogue.sqlite", bytes);
  auto catalogue = Catalogue::open(_data);
  const auto reason = catalogue ? catalogue->downloads().failure().reason : catalogue.failure().reason;
  EXPECT_THAT(reason, HasSubstr("is damaged"));
}

TEST_F(CatalogueTest, ARowThatMakesNoSenseIsAFailure) {
  {
    auto catalogue = opened();
    ASSERT_TRUE(catalogue.add(someDownload()));
  }
  for (const auto* sql : {"UPDATE downloads SET state = 'exploded'",
                          "UPDATE downloads SET state = 'queued', metadata = '{\"title\": 3}'"}) {
    runSQL(sql);
    EXPECT_FALSE(opened().downloads()) << sql;
  }
}

TEST_F(CatalogueTest, SaysWhenItsFolderCannotBeMade) {
  _folder.write("home", "a file");
  const auto catalogue = Catalogue::open(_data);
  ASSERT_FALSE(catalogue);
  EXPECT_THAT(catalogue.failure().reason, HasSubstr(_data));
}

}  // namespace
}  // namespace quaverly::library
