#include "Host/Library/DryRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Host/Library/ServiceUnderTest.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Support/TagBytes.h"

namespace quaverly::library {
namespace {

using testing::IsEmpty;

class DryRunTest : public testing::Test {
 protected:
  std::string media(const std::string& name, const std::string& bytes) {
    under.device().media().write(name, bytes);
    return "/var/mobile/Media/" + name;
  }
  /// What a dry run says of songs, as "state path" lines.
  std::vector<std::string> planned(const std::vector<Offered>& songs) {
    auto dryRun = *DryRun::open(under.settings());
    for (const auto& song : songs) dryRun->addDownloads({ServiceUnderTest::download(song)});
    std::vector<std::string> lines;
    for (const auto& [record, plan] : dryRun->outcomes()) {
      const auto* state = record.state == DownloadState::queued ? "filed" : nameOf(record.state);
      lines.push_back(std::string(state) + " " + record.libraryPath);
    }
    return lines;
  }
  std::vector<std::string> imported(const std::vector<Offered>& songs) {
    std::vector<std::string> lines;
    for (const auto& song : songs) {
      const auto record = under.import(song);
      lines.push_back(std::string(nameOf(record.state)) + " " + record.libraryPath);
    }
    return lines;
  }

  ServiceUnderTest under;
};

TEST_F(DryRunTest, SaysWhatTheImportThenDoes) {
  const auto one = media("one.mp3", songBytes(1));
  const auto two = media("two.mp3", songBytes(2));
  const SongTags tags{.title = "Title", .artist = "Artist", .album = "Album"};
  const std::vector<Offered> songs = {
      {one, tags},
      {two, tags},
      {one, tags},
      {one, {.title = "TITLE", .artist = "ARTIST", .album = "ALBUM"}},
      {two, {}},
      {media("text.mp3", "no song"), tags},
      {media("tagged.mp3", songBytes(3, test::tag(4, test::textFrame(4, "TIT2", "Old")))),
       {.trackNumber = 2}},
  };
  const auto plan = planned(songs);
  EXPECT_THAT(under.allFiles(), IsEmpty());
  EXPECT_THAT(*under.service().catalogue().downloads(), IsEmpty());
  EXPECT_EQ(imported(songs), plan);
  EXPECT_EQ(planned({{one, tags}}),
            std::vector<std::string>{"duplicate " + under.inLibrary("Artist/Album/Title.mp3")});
}

TEST_F(DryRunTest, ShowsTheTagsBeforeAndAfter) {
  auto dryRun = *DryRun::open(under.settings());
  const auto tag = test::tag(4, test::textFrame(4, "TIT2", "Old") + test::textFrame(4, "TRCK", "3/12"));
  dryRun->addDownloads({ServiceUnderTest::download(
      {media("song.mp3", songBytes(1, tag)), {.title = "New", .artist = "Somebody", .trackNumber = 3}})});
  const auto& plan = *dryRun->outcomes()[0].plan;
  EXPECT_EQ(plan.before, (SongTags{.title = "Old", .trackNumber = 3}));
  EXPECT_EQ(plan.after, (SongTags{.title = "New", .artist = "Somebody", .trackNumber = 3}));
  EXPECT_EQ(plan.artistFolder, "Somebody");
  EXPECT_EQ(plan.albumFolder, "Unknown Album");
  EXPECT_EQ(plan.fileName, "03 New.mp3");
}

TEST_F(DryRunTest, CompletesItsDownloadsLater) {
  auto dryRun = *DryRun::open(under.settings());
  const auto download = ServiceUnderTest::download({media("song.mp3", songBytes(1)), {}});
  bool completed = false;
  dryRun->addDownloads({download});
  download->setDownloadHandlerCompletionBlock(nullptr, [&] { completed = true; });
  EXPECT_FALSE(completed);
  ServiceUnderTest::runUntil([&] { return completed; });
}

}  // namespace
}  // namespace quaverly::library
