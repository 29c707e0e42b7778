#include <gtest/gtest.h>

#include "Host/Library/TagRewriter.h"
#include "Support/Mutations.h"
#include "Support/TagBytes.h"

namespace quaverly::library {
namespace {

using namespace std::string_literals;
using test::frame;
using test::mpegFrames;
using test::tag;
using test::textFrame;

std::vector<std::string> originals() {
  const auto trailing = test::apeTag(test::apeItem("Title", "Old") + test::apeItem("Year", "1999"), 2) +
                        test::id3v1("Old", "A", "B", "1999", 1, 17);
  std::vector<std::string> files;
  for (const int version : {2, 3, 4}) {
    const auto frames = textFrame(version, version == 2 ? "TT2" : "TIT2", "Old") +
                        test::pictureFrame(version, "\xff\xd8\xff") +
                        frame(version, version == 2 ? "COM" : "COMM", "\0engx"s);
    files.push_back(tag(version, frames) + mpegFrames(6) + trailing);
    files.push_back(tag(version, test::stuffed(frames), 0x80) + mpegFrames(6) + trailing);
  }
  return files;
}

TEST(DamagedSongs, AreRewrittenSoThatTheyReadToWhatIsWantedAndSoundTheSame) {
  const SongTags wanted{.title = "Title", .artist = "Ärzte", .trackNumber = 3, .year = 2014};
  const ArtworkChange artwork{ArtworkChange::Kind::replace, NSData("\xff\xd8\xff new")};
  test::Mutations mutations(originals());
  test::MemoryFile source;
  test::MemoryFile result;
  int rewritten = 0;
  for (int i = 0; i < 3000 && !testing::Test::HasFailure(); ++i) {
    const auto bytes = mutations.next();
    source.setContents(bytes);
    const auto song = inspectSong(source.descriptor());
    const auto plan = song ? rewriteMpeg(source.descriptor(), *song, wanted, artwork) : std::nullopt;
    if (!plan) continue;
    ++rewritten;
    result.setContents(plan->head + bytes.substr(song->audioOffset, song->audioLength) + plan->tail);
    const auto after = inspectSong(result.descriptor());
    ASSERT_TRUE(after) << i;
    EXPECT_EQ(after->tags, wanted) << i;
    EXPECT_TRUE(after->hasArtwork) << i;
    EXPECT_EQ(after->audioOffset, plan->head.size()) << i;
    EXPECT_EQ(audioHash(result.descriptor(), *after), audioHash(source.descriptor(), *song)) << i;
  }
  EXPECT_GT(rewritten, 1000);
}

}  // namespace
}  // namespace quaverly::library
