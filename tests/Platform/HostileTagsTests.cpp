#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <iostream>

#include "Platform/AVFoundation/FileBytes.h"
#include "Platform/AVFoundation/TagReading.h"
#include "ReadFromMemory.h"
#include "Support/Allocations.h"
#include "Support/AudioFiles.h"
#include "Support/Command.h"
#include "Support/Mutations.h"
#include "Support/TagBytes.h"

namespace quaverly::tags {
namespace {

using namespace std::string_literals;
using test::frame;
using test::mpegFrames;
using test::number;
using test::pictureFrame;
using test::tag;
using test::textFrame;

constexpr size_t mebi = size_t{1} << 20;

/// Reads a file within the time (of the processor, which others use as well) and the memory that any file
/// must be content with.
class Reading {
 public:
  void read(const std::string& bytes, const std::string& about) {
    _file.setContents(bytes);
    const test::AllocationPeak memory;
    const std::clock_t start = std::clock();
    readTags(_file.descriptor());
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    EXPECT_LT(memory.bytes(), bytes.size() + 64 * mebi) << about;
    EXPECT_LT(seconds, 1.0) << about;
    _slowest = std::max(_slowest, seconds);
    _largest = std::max(_largest, memory.bytes());
  }
  ~Reading() { std::cout << "slowest " << _slowest << " s, most memory " << _largest / 1024 << " KiB\n"; }

 private:
  test::MemoryFile _file;
  double _slowest = 0;
  size_t _largest = 0;
};

std::string syntheticSong(int version) {
  const auto id = [&](const char* two, const char* four) { return version == 2 ? two : four; };
  auto frames =
      textFrame(version, id("TT2", "TIT2"), "Title") + textFrame(version, id("TP1", "TPE1"), "Artist") +
      textFrame(version, id("TCO", "TCON"), "(17)") + pictureFrame(version, std::string(3000, '\xff'));
  if (version == 3) frames += frame(3, "TALB", number(9, 4) + test::deflated("\0Long Album"s), 0x0080);
  if (version == 4)
    frames += frame(4, "TALB", number(9, 4, 7) + test::stuffed(test::deflated("\0Long Album"s)), 0x000b);
  return tag(version, frames + std::string(100, '\0')) + mpegFrames(4);
}

std::vector<std::string> originals() {
  const test::TemporaryFolder folder;
  std::vector<std::string> files{syntheticSong(2), syntheticSong(3), syntheticSong(4)};
  files.push_back(tag(3, test::stuffed(syntheticSong(3).substr(10, 3000)), 0x80) + mpegFrames(4));
  files.push_back(
      mpegFrames(4) +
      test::apeTag(test::apeItem("Title", "T") + test::apeItem("Cover Art (Front)", "f\0image"s, 2), 2) +
      test::id3v1("T", "A", "B", "1999", 1, 17));
  for (const auto* name : {"a.flac", "a.ogg", "a.opus", "a.m4a", "a.mp3"}) {
    const auto path = test::encode(folder, name, {"title=Title", "artist=Artist", "track=1/2", "date=2014"});
    files.push_back(test::contentsOf(path).substr(0, 60'000));
  }
  return files;
}

TEST(HostileTags, TenThousandDamagedFilesAreReadQuicklyAndWithLittleMemory) {
  test::Mutations mutations(originals());
  Reading reading;
  for (int i = 0; i < 10'000 && !testing::Test::HasFailure(); ++i)
    reading.read(mutations.next(), "file " + std::to_string(i));
}

std::string songWithLargeCovers(int version) {
  const auto cover = pictureFrame(version, std::string(30'000, version == 3 ? 'T' : '\xff'));
  const auto title = textFrame(version, version == 2 ? "TT2" : "TIT2", "Title");
  return tag(version, title + cover + title + cover + std::string(5000, '\0')) + mpegFrames(4);
}

TEST(HostileTags, WhatLiesInMemoryThatWasNotReadDecidesNothing) {
  constexpr size_t storageLength = 200'000;
  test::Mutations mutations({songWithLargeCovers(2), songWithLargeCovers(3), songWithLargeCovers(4)});
  test::MemoryFile file;
  const auto readOver = [&](uint8_t leftover) {
    std::fill_n(reusedStorage(storageLength).get(), storageLength, leftover);
    return described(readTags(file.descriptor()));
  };
  for (int i = 0; i < 2000 && !testing::Test::HasFailure(); ++i) {
    file.setContents(mutations.next());
    EXPECT_EQ(readOver(0), readOver('T')) << i;
  }
}

std::string repeated(const std::string& piece, size_t length) {
  std::string bytes;
  bytes.reserve(length + piece.size());
  while (bytes.size() < length) bytes += piece;
  return bytes;
}

TEST(HostileTags, LargeFilesMadeToCostMuchDoNot) {
  const auto bomb =
      frame(3, "TIT2", number(0x7fffffff, 4) + test::deflated(std::string(40 * mebi, '\0')), 0x0080);
  const auto stuffedPicture =
      frame(4, "APIC", "\0image/jpeg\0\3\0"s + repeated("\xff\0"s, 20 * mebi), 0x0002);
  const auto vorbisComment = [](const std::string& comments) {
    const auto block = "\0\0\0\0"s + std::string("\x01\0\0\0", 4) + comments;
    return "fLaC" + number(34, 4) + std::string(34, '\1') + "\x84" + number(block.size(), 3) + block;
  };
  const auto longComment = "\0\0\xf0\0"s + "TITLE=" + std::string(0xf00000 - 6, 'x');
  const std::vector<std::pair<const char*, std::string>> cases{
      {"a tag of a quarter gigabyte that is not there",
       "ID3\3\0\0\x7f\x7f\x7f\x7f"s + textFrame(3, "TIT2", "T")},
      {"nothing but tiny frames", tag(3, repeated(textFrame(3, "TIT2", "x"), 100 * mebi))},
      {"nothing but pictures", tag(3, repeated(pictureFrame(3, "x"), 50 * mebi))},
      {"nothing but letters", tag(3, std::string(100 * mebi, 'A'))},
      {"letters and spaces", tag(3, repeated("TIT2 ", 100 * mebi))},
      {"one text", tag(3, textFrame(3, "TIT2", std::string(100 * mebi, '\xe4')))},
      {"frames that inflate a thousandfold", tag(3, repeated(bomb, 4 * mebi))},
      {"large pictures that are stuffed", tag(4, stuffedPicture + stuffedPicture + stuffedPicture)},
      {"a stuffed tag", tag(3, repeated("\xff\0"s, 100 * mebi), 0x80)},
      {"empty tags in a row", repeated(tag(3, ""), 50 * mebi)},
      {"an APE tag of tiny items",
       mpegFrames(2) + test::apeTag(repeated(test::apeItem("Title", "x"), 50 * mebi), 7)},
      {"an APE tag that is a single key", mpegFrames(2) + test::apeTag(std::string(50 * mebi, 'k'), 1)},
      {"synchronisation marks without frames", std::string(50 * mebi, '\xff')},
      {"a Vorbis comment of one long title", vorbisComment(longComment)},
      {"a long title in an MP4 file",
       "\0\0\0\x10"
       "ftypM4A \0\0\0\0"s +
           number(30 * mebi + 8, 4) + "moov" + std::string(30 * mebi, 'x')},
      {"pages of Ogg without an end",
       repeated("OggS\0\2\0\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\1\x1e\1vorbis"s + std::string(23, '\1'),
                50 * mebi)},
  };
  Reading reading;
  for (const auto& [about, bytes] : cases) reading.read(bytes, about);
}

}  // namespace
}  // namespace quaverly::tags
