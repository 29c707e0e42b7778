#pragma once

#include <optional>
#include <string>

#include "Host/Library/TagRewriter.h"
#include "Support/TemporaryFolder.h"

namespace quaverly::library {

/// A file of a test, open.
class OpenSong {
 public:
  explicit OpenSong(const std::string& path);
  ~OpenSong();
  OpenSong(const OpenSong&) = delete;
  OpenSong& operator=(const OpenSong&) = delete;

  int descriptor() const { return _descriptor; }
  /// Fails the test when the file is no song.
  SongFile inspect() const;

 private:
  int _descriptor;
};

/// A song before and after its tags were rewritten, as files of a folder that lives as long.
class RewrittenSong {
 public:
  /// Files `source` away, rewrites it as an import does, and holds the result against what must always be
  /// true: the audio is the same, aligned, and reads to the promised tags; the source is as it was.
  RewrittenSong(const std::string& source, const SongTags& tags, const ArtworkChange& artwork = {});

  const std::string& bytes() const { return _bytes; }
  const RewrittenMpeg& rewritten() const { return _rewritten; }
  const SongFile& after() const { return _after; }
  std::string path() const { return _folder / "after.mp3"; }

 private:
  test::TemporaryFolder _folder;
  RewrittenMpeg _rewritten;
  std::string _bytes;
  SongFile _after{};
};

}  // namespace quaverly::library
