#include "Host/Library/DownloadService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "Externals/HTTPServer/HTTPServer.h"
#include "Host/Library/DownloadTaking.h"
#include "Host/Library/ServiceUnderTest.h"
#include "Support/AudioFiles.h"
#include "Support/TagBytes.h"
#include "Support/TestPeer.h"

namespace quaverly::library {
namespace {

namespace fs = std::filesystem;
using quaverly::test::contentsOf;
using quaverly::test::pictureFrame;
using quaverly::test::tag;
using quaverly::test::TestPeer;
using quaverly::test::textFrame;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const SongTags someTags{
    .title = "Title", .artist = "Artist", .album = "Album", .trackNumber = 7, .year = 2014};

std::string audioOf(const std::string& path) {
  const auto bytes = contentsOf(path);
  const auto start = bytes.find("\xff\xfb");
  return start == std::string::npos ? "" : bytes.substr(start);
}

class DownloadServiceTest : public testing::Test {
 protected:
  /// A song in the media folder; returns its device path.
  std::string media(const std::string& name, const std::string& bytes) {
    host = under.device().media().write(name, bytes);
    return std::string(quaverly::test::TestDevice::mediaPath) + "/" + name;
  }

  ServiceUnderTest under;
  std::string host;
};

TEST_F(DownloadServiceTest, ASongEndsTaggedInTheLibraryAndInTheCatalogue) {
  const auto bytes = songBytes(1);
  const auto record = under.import({media("some song.mp3", bytes), someTags});
  EXPECT_EQ(record.state, DownloadState::filed) << record.reason;
  EXPECT_EQ(record.reason, "");
  EXPECT_EQ(record.libraryPath, under.inLibrary("Artist/Album/07 Title.mp3"));
  EXPECT_EQ(record.bytes, bytes.size());
  EXPECT_EQ(record.sourcePath, host);
  EXPECT_EQ(tagsOf(record.libraryPath), someTags);
  EXPECT_EQ(audioOf(record.libraryPath), bytes);
  EXPECT_EQ(contentsOf(host), bytes);
  EXPECT_THAT(under.allFiles(), ElementsAre("Artist/Album/07 Title.mp3"));
  const auto songs = *under.service().catalogue().songs();
  ASSERT_EQ(songs.size(), 1U);
  EXPECT_EQ(songs[0].path, record.libraryPath);
  EXPECT_EQ(songs[0].tags, someTags);
  EXPECT_EQ(songs[0].size, fs::file_size(record.libraryPath));
  const auto stored = **under.service().catalogue().download(record.id);
  EXPECT_EQ(stored.state, DownloadState::filed);
  EXPECT_EQ(stored.metadata.genre, "");
}

TEST_F(DownloadServiceTest, ObserversHearOfEveryStepInItsOrder) {
  under.import({media("song.mp3", songBytes(1)), someTags});
  ServiceUnderTest::runUntil([&] { return under.recorder().idle > 0; });
  EXPECT_THAT(under.recorder().added, ElementsAre(1));
  EXPECT_THAT(under.recorder().started, ElementsAre(1));
  ASSERT_FALSE(under.recorder().progress.empty());
  EXPECT_EQ(under.recorder().progress.back().bytes, songBytes(1).size());
  EXPECT_EQ(under.recorder().progress.back().total, songBytes(1).size());
  EXPECT_GT(under.recorder().progress.back().bytesPerSecond, 0);
  EXPECT_EQ(under.recorder().idle, 1U);
  EXPECT_TRUE(under.service().isIdle());
}

TEST_F(DownloadServiceTest, NothingEndsFromInsideTheCall) {
  const auto download = ServiceUnderTest::download({media("song.mp3", songBytes(1)), someTags});
  under.service().addDownloads({download});
  int completions = 0;
  download->setDownloadHandlerCompletionBlock(nullptr, [&completions, held = download] { ++completions; });
  EXPECT_EQ(completions, 0);
  EXPECT_TRUE(under.recorder().added.empty());
  EXPECT_FALSE(under.service().isIdle());
  EXPECT_EQ(under.service().latestDownload(), 1);
  under.runUntilEnded(1);
  EXPECT_EQ(completions, 1);
  EXPECT_EQ(download->retainCount(), 1U);
}

TEST_F(DownloadServiceTest, ADownloadThatFailsIsCompletedToo) {
  const auto download = ServiceUnderTest::download({"/var/mobile/Media/missing.mp3", someTags});
  int completions = 0;
  under.service().addDownloads({download});
  download->setDownloadHandlerCompletionBlock(nullptr, [&] { ++completions; });
  under.runUntilEnded(1);
  EXPECT_EQ(completions, 1);
  EXPECT_EQ(under.recorder().ended[0].state, DownloadState::failed);
  EXPECT_EQ(under.recorder().ended[0].reason, "The file cannot be read: it is not there.");
}

TEST_F(DownloadServiceTest, DownloadsAreFiledOneAfterTheOther) {
  for (unsigned i = 1; i <= 20; ++i) {
    auto tags = someTags;
    tags.trackNumber = static_cast<int32_t>(i);
    under.add({media(std::to_string(i) + ".mp3", songBytes(i)), tags});
  }
  under.runUntilEnded(20);
  for (size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(under.recorder().ended[i].id, static_cast<DownloadID>(i + 1));
    EXPECT_EQ(under.recorder().ended[i].state, DownloadState::filed);
  }
  EXPECT_EQ(under.songs().size(), 20U);
  EXPECT_EQ(under.service().catalogue().songs()->front().tags.trackNumber, 20);
}

TEST_F(DownloadServiceTest, TheArtworkIsCopiedBeforeTheNextSongStagesItsOwn) {
  const std::string url =
      "file://localhost/private/var/mobile/Media/Quaverly/tmp/current_album_image_local.jpg";
  for (const char number : {'1', '2'}) {
    under.device().temporary().write("tmp/current_album_image_local.jpg",
                                     std::string("\xff\xd8\xff\xe0 cover ") + number);
    auto tags = someTags;
    tags.title = std::string(1, number);
    under.add(
        {media(std::string(1, number) + ".mp3", songBytes(static_cast<unsigned char>(number))), tags, url});
  }
  under.device().temporary().write("tmp/current_album_image_local.jpg", "gone");
  under.runUntilEnded(2);
  EXPECT_THAT(contentsOf(under.inLibrary("Artist/Album/07 1.mp3")), HasSubstr("\xff\xd8\xff\xe0 cover 1"));
  EXPECT_THAT(contentsOf(under.inLibrary("Artist/Album/07 2.mp3")), HasSubstr("\xff\xd8\xff\xe0 cover 2"));
  EXPECT_TRUE(fs::is_empty(under.settings().dataFolder + "/artwork"));
}

TEST_F(DownloadServiceTest, PicturesGoWhenNoneIsNamedAndStayWhenTheNamedOneCannotBeUsed) {
  const std::string picture = "\xff\xd8\xff\xe0 the file's own";
  const auto bytes = songBytes(1, tag(3, pictureFrame(3, picture)));
  const auto without = under.import({media("a.mp3", bytes), {.title = "Without"}});
  EXPECT_THAT(contentsOf(without.libraryPath), testing::Not(HasSubstr(picture)));
  under.device().temporary().write("tmp/strange.jpg", "GIF89a");
  for (const auto* name : {"missing.jpg", "strange.jpg"}) {
    const auto with =
        under.import({media("b.mp3", bytes),
                      {.title = name},
                      std::string("file://localhost/private/var/mobile/Media/Quaverly/tmp/") + name});
    EXPECT_EQ(with.state, DownloadState::filed) << with.reason;
    EXPECT_THAT(contentsOf(with.libraryPath), HasSubstr(picture)) << name;
  }
}

TEST_F(DownloadServiceTest, TheSameSongIsNotFiledTwice) {
  const auto first = under.import({media("a.mp3", songBytes(1)), someTags});
  const auto again =
      under.import({media("b.mp3", songBytes(1, tag(4, textFrame(4, "TIT2", "Other")))), someTags});
  EXPECT_EQ(again.state, DownloadState::duplicate);
  EXPECT_EQ(again.libraryPath, first.libraryPath);
  EXPECT_THAT(again.reason, HasSubstr("already"));
  EXPECT_THAT(under.allFiles(), ElementsAre("Artist/Album/07 Title.mp3"));
}

TEST_F(DownloadServiceTest, TheSameAudioWithOtherTagsOrAnotherCoverIsAnotherSong) {
  const auto path = media("a.mp3", songBytes(1));
  under.import({path, someTags});
  auto tags = someTags;
  tags.year = 2015;
  EXPECT_EQ(under.import({path, tags}).libraryPath, under.inLibrary("Artist/Album/07 Title (2).mp3"));
  under.device().temporary().write("tmp/cover.jpg", "\xff\xd8\xff\xe0 cover");
  const auto covered =
      under.import({path, someTags, "file://localhost/private/var/mobile/Media/Quaverly/tmp/cover.jpg"});
  EXPECT_EQ(covered.libraryPath, under.inLibrary("Artist/Album/07 Title (3).mp3"));
}

TEST_F(DownloadServiceTest, OtherAudioUnderTheSameNameGetsANumberAndIsReported) {
  const auto first = under.import({media("a.mp3", songBytes(1)), someTags});
  const auto second = under.import({media("b.mp3", songBytes(2)), someTags});
  const auto third = under.import({media("c.mp3", songBytes(3)), someTags});
  EXPECT_EQ(second.libraryPath, under.inLibrary("Artist/Album/07 Title (2).mp3"));
  EXPECT_EQ(second.state, DownloadState::filed);
  EXPECT_EQ(second.reason, "Another song has this name already: " + first.libraryPath);
  EXPECT_EQ(third.libraryPath, under.inLibrary("Artist/Album/07 Title (3).mp3"));
  EXPECT_EQ(audioOf(first.libraryPath), songBytes(1));
  EXPECT_EQ(audioOf(third.libraryPath), songBytes(3));
}

TEST_F(DownloadServiceTest, NamesThatDifferInCaseAloneAreTheSameName) {
  under.import({media("a.mp3", songBytes(1)), someTags});
  auto tags = someTags;
  tags.artist = "ARTIST";
  tags.title = "TITLE";
  const auto record = under.import({media("b.mp3", songBytes(2)), tags});
  EXPECT_EQ(record.libraryPath, under.inLibrary("Artist/Album/07 TITLE (2).mp3"));
  EXPECT_EQ(tagsOf(record.libraryPath), tags);
}

TEST_F(DownloadServiceTest, ASongWhoseFileIsGoneIsFiledAgain) {
  const auto path = media("a.mp3", songBytes(1));
  const auto first = under.import({path, someTags});
  fs::remove(first.libraryPath);
  const auto again = under.import({path, someTags});
  EXPECT_EQ(again.state, DownloadState::filed);
  EXPECT_EQ(again.libraryPath, first.libraryPath);
  EXPECT_EQ(under.service().catalogue().songs()->size(), 1U);
}

TEST_F(DownloadServiceTest, ForeignFilesInTheLibraryAreNeverReplaced) {
  const auto foreign = under.folder().write("music/Artist/Album/07 title.MP3", "foreign");
  const auto record = under.import({media("a.mp3", songBytes(1)), someTags});
  EXPECT_EQ(record.libraryPath, under.inLibrary("Artist/Album/07 Title (2).mp3"));
  EXPECT_EQ(contentsOf(foreign), "foreign");
}

TEST_F(DownloadServiceTest, AFolderThatIsAFileIsAFailureAndLeavesNothing) {
  under.folder().write("music/Artist", "a file");
  const auto record = under.import({media("a.mp3", songBytes(1)), someTags});
  EXPECT_EQ(record.state, DownloadState::failed);
  EXPECT_THAT(record.reason, HasSubstr("a file is in the way of a folder"));
  EXPECT_THAT(under.allFiles(), ElementsAre("Artist"));
}

TEST_F(DownloadServiceTest, AFileFromOutsideStaysMountedUntilItsDownloadHasEnded) {
  const auto path = under.folder().write("usb/01.mp3", songBytes(1));
  auto file = *under.outsideFiles().mount(path);
  const auto devicePath = file->devicePath();
  under.add({devicePath, someTags});
  file = nullptr;
  under.runUntilEnded(1);
  EXPECT_EQ(under.recorder().ended[0].state, DownloadState::filed) << under.recorder().ended[0].reason;
  EXPECT_EQ(under.recorder().ended[0].sourcePath, path);
  EXPECT_FALSE(under.device()->mounts.resolve(devicePath));
}

TEST_F(DownloadServiceTest, AFailedDownloadCanBeTriedAgain) {
  const auto path = under.folder().write("usb/01.mp3", "no song yet");
  auto file = *under.outsideFiles().mount(path);
  const auto failed = under.import({file->devicePath(), someTags});
  file = nullptr;
  EXPECT_EQ(failed.state, DownloadState::failed);
  EXPECT_EQ(failed.reason, "The file holds no audio that can be imported.");
  under.folder().write("usb/01.mp3", songBytes(1));
  EXPECT_FALSE(under.service().retry(failed.id));
  under.runUntilEnded(2);
  EXPECT_EQ(under.recorder().ended[1].id, failed.id);
  EXPECT_EQ(under.recorder().ended[1].state, DownloadState::filed) << under.recorder().ended[1].reason;
  EXPECT_TRUE(under.service().retry(failed.id));
  EXPECT_TRUE(under.service().retry(999));
}

TEST_F(DownloadServiceTest, TakesADownloadThatAnotherProgramHasWrittenIntoTheCatalogue) {
  auto elsewhere = Catalogue::open(under.settings().dataFolder);
  const ArtworkStore artwork(under.settings().dataFolder);
  const auto record = takeOver(
      recordOf(*ServiceUnderTest::download({media("a.mp3", songBytes(1)), someTags})), *elsewhere, artwork);
  ASSERT_TRUE(record) << record.failure().reason;
  EXPECT_FALSE(under.service().take(record->id));
  EXPECT_FALSE(under.service().take(record->id));  // which changes nothing
  under.runUntilEnded(1);
  EXPECT_EQ(under.recorder().ended[0].id, record->id);
  EXPECT_EQ(under.recorder().ended[0].state, DownloadState::filed) << under.recorder().ended[0].reason;
  EXPECT_FALSE(under.service().take(record->id));
  EXPECT_TRUE(under.service().isIdle());
  EXPECT_TRUE(under.service().take(999));
  EXPECT_EQ(under.recorder().ended.size(), 1U);
}

TEST_F(DownloadServiceTest, TheCoverOfAFailedDownloadIsKeptForTheNextTry) {
  under.device().temporary().write("tmp/cover.jpg", "\xff\xd8\xff\xe0 cover");
  const auto failed = under.import({media("a.mp3", "no song yet"), someTags,
                                    "file://localhost/private/var/mobile/Media/Quaverly/tmp/cover.jpg"});
  under.device().temporary().write("tmp/cover.jpg", "changed");
  media("a.mp3", songBytes(1));
  under.restart();
  EXPECT_FALSE(under.service().retry(failed.id));
  under.runUntilEnded(1);
  EXPECT_EQ(under.recorder().ended[0].state, DownloadState::filed) << under.recorder().ended[0].reason;
  EXPECT_THAT(contentsOf(under.recorder().ended[0].libraryPath), HasSubstr("\xff\xd8\xff\xe0 cover"));
}

struct BadSource {
  const char* name;
  std::string bytes;
  const char* reason;
};

TEST_F(DownloadServiceTest, WhatIsNoSongIsAFailureWithAPlainReason) {
  const BadSource cases[] = {
      {"empty.mp3", "", "The file is empty."},
      {"text.mp3", "Dear diary, today I listened to music.\n",
       "The file holds no audio that can be imported."},
      {"folder.mp3/x", "x", "This is a folder, not a song."},
  };
  for (const auto& [name, bytes, reason] : cases) {
    media(name, bytes);
    const auto record = under.import(
        {std::string("/var/mobile/Media/") + std::string(name).substr(0, std::string(name).find('/')),
         someTags});
    EXPECT_EQ(record.state, DownloadState::failed) << name;
    EXPECT_EQ(record.reason, reason) << name;
  }
  fs::create_directories(under.device().media().path());
  ASSERT_EQ(mkfifo((under.device().media() / "pipe.mp3").c_str(), 0600), 0);
  EXPECT_EQ(under.import({"/var/mobile/Media/pipe.mp3", someTags}).reason, "This is not a regular file.");
  EXPECT_EQ(under.import({"/nowhere/x.mp3", someTags}).reason, "The file lies outside what can be imported.");
  EXPECT_THAT(under.allFiles(), IsEmpty());
}

struct BadServer {
  const char* name;
  std::function<std::string(const std::string& song)> answer;
  const char* reason;
};

TEST_F(DownloadServiceTest, WhatDoesNotArriveAsItWasOfferedIsNeverFiled) {
  const BadServer cases[] = {
      {"short",
       [](auto& song) {
         return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(song.size()) + "\r\n\r\n" +
                song.substr(0, 5000);
       },
       "only 5000 of"},
      {"shorter file", [](auto& song) { return TestPeer::ok(song.substr(0, song.size() - 417)); },
       "changed while"},
      {"empty", [](auto&) { return TestPeer::ok(""); }, "sent nothing"},
      {"longer", [](auto& song) { return TestPeer::ok(song + song); }, "changed while"},
      {"one bit",
       [](auto song) {
         song[5000] = static_cast<char>(song[5000] ^ 1);
         return TestPeer::ok(song);
       },
       "stored differs"},
      {"text", [](auto&) { return TestPeer::ok("<html>nothing here</html>"); }, "changed while"},
      {"refusal", [](auto&) { return "HTTP/1.1 501 Not Implemented\r\nContent-Length: 0\r\n\r\n"; },
       "status 501"},
  };
  const auto song = songBytes(1);
  const auto path = media("song.mp3", song);
  for (const auto& [name, answer, reason] : cases) {
    TestPeer peer([&](const std::string&) { return answer(song); });
    const auto record = under.import(ServiceUnderTest::download({path, someTags}, peer.url("")));
    EXPECT_EQ(record.state, DownloadState::failed) << name;
    EXPECT_THAT(record.reason, HasSubstr(reason)) << name;
    EXPECT_THAT(under.allFiles(), IsEmpty()) << name;
  }
}

TEST_F(DownloadServiceTest, ASourceThatChangesBetweenMeasuringAndSendingIsNeverFiled) {
  const auto flac = quaverly::test::encode(under.device().temporary(), "made.flac", {"title=Old"});
  const std::pair<std::string, std::string> songs[] = {{"song.mp3", songBytes(1)},
                                                       {"song.flac", contentsOf(flac)}};
  for (const auto& [name, song] : songs) {
    const auto path = media(name, song);
    auto changed = song;
    changed[song.size() - 500] = static_cast<char>(changed[song.size() - 500] ^ 1);
    TestPeer peer([&](const std::string&) {
      media(name, changed);
      return TestPeer::ok(changed);
    });
    const auto record = under.import(ServiceUnderTest::download({path, someTags}, peer.url("")));
    EXPECT_EQ(record.state, DownloadState::failed) << name;
    EXPECT_EQ(record.reason, "The file changed while it was being imported. Try again.") << name;
    EXPECT_THAT(under.allFiles(), IsEmpty()) << name;
  }
}

TEST_F(DownloadServiceTest, StoppingGivesAFetchUpAndSaysWhatIsNotDone) {
  TestPeer peer([](const std::string&) { return "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\nsome"; },
                TestPeer::Afterwards::keepSilent);
  const auto path = media("song.mp3", songBytes(1));
  const auto download = ServiceUnderTest::download({path, someTags}, peer.url(""));
  under.service().addDownloads({download});
  int completions = 0;
  download->setDownloadHandlerCompletionBlock(nullptr, [&] { ++completions; });
  auto tags = someTags;
  tags.title = "Second";
  under.add({path, tags});
  ServiceUnderTest::runUntil([&] { return peer.requests() > 0; });
  under.service().stop();
  ServiceUnderTest::runUntil([&] { return under.recorder().stopped; });
  ASSERT_EQ(under.recorder().notDone.size(), 2U);
  EXPECT_EQ(under.recorder().notDone[0].id, 1);
  EXPECT_EQ(under.recorder().notDone[0].state, DownloadState::queued);
  EXPECT_EQ(under.recorder().notDone[1].metadata.title, "Second");
  EXPECT_EQ(completions, 1);
  EXPECT_THAT(under.recorder().ended, IsEmpty());
  EXPECT_THAT(under.allFiles(), IsEmpty());
}

TEST_F(DownloadServiceTest, WhatWasInterruptedGoesOnAtTheNextStart) {
  under.service().stop();
  const auto usb = under.folder().write("usb/02.mp3", songBytes(2));
  {
    const auto file = *under.outsideFiles().mount(usb);
    auto tags = someTags;
    tags.title = "Second";
    under.add({media("song.mp3", songBytes(1)), someTags});
    under.add({file->devicePath(), tags});
    ServiceUnderTest::runUntil([&] { return under.recorder().stopped; });
  }
  EXPECT_THAT(under.allFiles(), IsEmpty());
  under.restart();
  under.service().resumeInterrupted();
  EXPECT_FALSE(under.service().isIdle());
  under.runUntilEnded(2);
  EXPECT_THAT(under.recorder().added, ElementsAre(1, 2));
  EXPECT_THAT(under.songs(), ElementsAre("Artist/Album/07 Second.mp3", "Artist/Album/07 Title.mp3"));
  EXPECT_EQ(under.recorder().ended[1].sourcePath, usb);
}

TEST_F(DownloadServiceTest, ResumingWithNothingToResumeIsIdleAtOnce) {
  under.service().resumeInterrupted();
  ServiceUnderTest::runUntil([&] { return under.recorder().idle == 1; });
  EXPECT_TRUE(under.service().isIdle());
}

TEST_F(DownloadServiceTest, AMovedMediaFolderDoesNotMisleadAResumedDownload) {
  under.service().stop();
  under.add({media("song.mp3", songBytes(1)), someTags});
  const quaverly::test::TemporaryFolder other;
  other.write("song.mp3", songBytes(2));
  under.device()->mounts.mount(quaverly::test::TestDevice::mediaPath, other.path(),
                               MountTable::Access::readOnly);
  under.restart();
  under.service().resumeInterrupted();
  under.runUntilEnded(1);
  EXPECT_EQ(audioOf(under.recorder().ended[0].libraryPath), songBytes(1));
}

TEST_F(DownloadServiceTest, TwoServicesOnOneFolderTakeTurns) {
  under.import({media("1.mp3", songBytes(1)), {.title = "One"}});
  OutsideFiles outsideFiles;
  ImportServer server;
  Recorder recorder;
  auto second = *DownloadService::open(under.settings(), outsideFiles, server);
  second->addObserver(&recorder);
  second->addDownloads({ServiceUnderTest::download({media("2.mp3", songBytes(2)), {.title = "Two"}})});
  ServiceUnderTest::runUntil([&] { return !recorder.waits.empty(); });
  EXPECT_THAT(recorder.waits[0], HasSubstr("Another import is running"));
  EXPECT_EQ(under.import({media("3.mp3", songBytes(3)), {.title = "Three"}}).state, DownloadState::filed);
  EXPECT_THAT(recorder.ended, IsEmpty());
  under.end();
  ServiceUnderTest::runUntil([&] { return !recorder.ended.empty(); });
  EXPECT_EQ(recorder.ended[0].state, DownloadState::filed);
  EXPECT_EQ(recorder.waits.size(), 1U);
}

TEST_F(DownloadServiceTest, ADownloadThatAnotherServiceResumedIsReportedAsItEnded) {
  under.import({media("1.mp3", songBytes(1)), {.title = "One"}});
  OutsideFiles outsideFiles;
  ImportServer server;
  Recorder recorder;
  auto waiting = *DownloadService::open(under.settings(), outsideFiles, server);
  waiting->addObserver(&recorder);
  waiting->addDownloads({ServiceUnderTest::download({media("2.mp3", songBytes(2)), {.title = "Two"}})});
  under.service().resumeInterrupted();
  under.runUntilEnded(2);
  under.end();
  ServiceUnderTest::runUntil([&] { return !recorder.ended.empty(); });
  EXPECT_EQ(recorder.ended[0].state, DownloadState::filed);
  EXPECT_EQ(under.songs().size(), 2U);
}

TEST_F(DownloadServiceTest, OtherKindsAreToldByTheirContentAndFiledUnderTheirOwnEnding) {
  for (const std::string ending : {"flac", "ogg", "opus", "m4a"}) {
    const auto encoded =
        quaverly::test::encode(under.folder(), "song." + ending, {"title=Old", "artist=Somebody"});
    const auto bytes = contentsOf(encoded);
    const auto record =
        under.import({media(ending + ".mp3", bytes), {.title = "New " + ending, .artist = "Artist"}});
    EXPECT_EQ(record.state, DownloadState::filed) << ending << ": " << record.reason;
    EXPECT_EQ(record.libraryPath, under.inLibrary("Artist/Unknown Album/New " + ending + "." + ending));
    EXPECT_EQ(tagsOf(record.libraryPath), (SongTags{.title = "New " + ending, .artist = "Artist"}));
    EXPECT_EQ(contentsOf(host), bytes);
    EXPECT_EQ(under.import({media("again.mp3", bytes), {.title = "New " + ending, .artist = "Artist"}}).state,
              DownloadState::duplicate);
  }
}

TEST_F(DownloadServiceTest, TheSameSongTwiceInOneGoIsFiledOnce) {
  const auto path = media("song.mp3", songBytes(1));
  for (int i = 0; i < 3; ++i) under.add({path, someTags});
  under.add({media("other.mp3", songBytes(2)), someTags});
  under.runUntilEnded(4);
  std::vector<DownloadState> states;
  for (const auto& record : under.recorder().ended) states.push_back(record.state);
  EXPECT_THAT(states, ElementsAre(DownloadState::filed, DownloadState::duplicate, DownloadState::duplicate,
                                  DownloadState::filed));
  EXPECT_THAT(under.songs(), ElementsAre("Artist/Album/07 Title (2).mp3", "Artist/Album/07 Title.mp3"));
}

TEST_F(DownloadServiceTest, TheServerIsStartedWhenItIsIdle) {
  EXPECT_EQ(HTTPServer::sharedHTTPServer()->state(), HTTPServerStateIdle);
  EXPECT_EQ(under.import({media("1.mp3", songBytes(1)), {.title = "One"}}).state, DownloadState::filed);
  EXPECT_EQ(HTTPServer::sharedHTTPServer()->state(), HTTPServerStateRunning);
  HTTPServer::sharedHTTPServer()->stop();
  EXPECT_EQ(under.import({media("2.mp3", songBytes(2)), {.title = "Two"}}).state, DownloadState::filed);
}

TEST_F(DownloadServiceTest, ACatalogueThatBreaksIsAFailureThatIsTold) {
  under.end();
  under.folder().write("data/catalogue.sqlite", std::string(8192, 'x'));
  fs::remove(under.folder() / "data/catalogue.sqlite-wal");
  OutsideFiles outsideFiles;
  ImportServer server;
  const auto service = DownloadService::open(under.settings(), outsideFiles, server);
  ASSERT_FALSE(service);
  EXPECT_THAT(service.failure().reason, HasSubstr("is damaged"));
}

TEST_F(DownloadServiceTest, DestroyingTheServiceCompletesWhatIsUnderWay) {
  const auto download = ServiceUnderTest::download({media("song.mp3", songBytes(1)), someTags});
  int completions = 0;
  under.service().addDownloads({download});
  download->setDownloadHandlerCompletionBlock(nullptr, [&] { ++completions; });
  under.end();
  EXPECT_EQ(completions, 1);
  EXPECT_EQ(download->retainCount(), 1U);
}

}  // namespace
}  // namespace quaverly::library
