#include "RewrittenSong.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>

namespace quaverly::library {

OpenSong::OpenSong(const std::string& path) : _descriptor(open(path.c_str(), O_RDWR | O_CLOEXEC)) {}

OpenSong::~OpenSong() {
  close(_descriptor);
}

SongFile OpenSong::inspect() const {
  const auto song = inspectSong(_descriptor);
  if (!song) throw std::runtime_error("no song");
  return *song;
}

RewrittenSong::RewrittenSong(const std::string& source, const SongTags& tags, const ArtworkChange& artwork) {
  const auto path = _folder.write("before.mp3", source);
  const OpenSong before(path);
  const auto song = before.inspect();
  const auto rewritten = rewriteMpeg(before.descriptor(), song, tags, artwork);
  if (!rewritten) throw std::runtime_error("not rewritten");
  _rewritten = *rewritten;
  _bytes = _rewritten.head + source.substr(song.audioOffset, song.audioLength) + _rewritten.tail;
  _folder.write("after.mp3", _bytes);

  const OpenSong opened(this->path());
  _after = opened.inspect();
  EXPECT_EQ(test::contentsOf(path), source);
  EXPECT_EQ(_after.audioOffset % 4096, 0U);
  EXPECT_EQ(_after.audioLength, song.audioLength);
  EXPECT_EQ(audioHash(opened.descriptor(), _after), audioHash(before.descriptor(), song));
  // The reader takes a longer track number for something else.
  if (tags.trackNumber < 1000) {
    EXPECT_EQ(_after.tags, _rewritten.tags);
  }
}

}  // namespace quaverly::library
