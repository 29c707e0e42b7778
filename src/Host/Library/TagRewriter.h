#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "Host/Library/SongTags.h"

namespace quaverly::library {

/// A 128-bit content hash (XXH3), for telling equal audio from other audio. Not for security.
struct ContentHash {
  std::array<uint8_t, 16> bytes{};
  bool operator==(const ContentHash&) const = default;
  std::string hex() const;
};

/// What lies in an audio file: which kind it is by its content, where its audio is, and its tags.
struct SongFile {
  AudioKind kind;
  uint64_t length;       ///< the whole file, in bytes
  uint64_t audioOffset;  ///< MPEG: behind the leading ID3v2 tags; otherwise 0
  uint64_t audioLength;  ///< MPEG: up to the APE and ID3v1 tags at the end; otherwise the whole file
  SongTags tags;
  bool hasArtwork;
};

/// Looks at a file by its descriptor, which stays the caller's, is only read, and at positions of its own
/// (pread). Nothing when the content is no audio that we file.
std::optional<SongFile> inspectSong(int descriptor);

/// The hash of the audio alone, tags left out, so that retagging does not change it: for MPEG the bytes
/// between the tags, for other formats the audio pages, frames or media data that TagLib's writers leave
/// untouched. Nothing when reading fails.
std::optional<ContentHash> audioHash(int descriptor, const SongFile& song);

/// A rewritten MPEG file is `head`, then the source's audio bytes as they are, then `tail`.
struct RewrittenMpeg {
  std::string head;  ///< the new ID3v2 tag with its padding; empty when there is nothing to say
  std::string tail;  ///< what followed the audio, its tags kept in step
  SongTags tags;     ///< what a reader will find
};

/// Plans the new tags of an MPEG file. Frames that `tags` and `artwork` do not speak of stay byte for byte,
/// in the tag version found (2.3 for a file without a tag); a frame that already reads to the wanted value
/// stays as written, and so does a picture whose staged form `artwork` is. APE tags and ID3v1 behind the
/// audio are kept in step. Nothing when reading fails, when the file is no longer as it was inspected, and
/// when the tag would be longer than its version allows.
std::optional<RewrittenMpeg> rewriteMpeg(int descriptor, const SongFile& song, const SongTags& tags,
                                         const ArtworkChange& artwork);

/// Writes tags into a file of another kind than MPEG, in place and in its own format; for a copy that nobody
/// reads yet. Returns what a reader will find, or nothing when writing fails.
std::optional<SongTags> rewriteInPlace(int descriptor, const SongFile& song, const SongTags& tags,
                                       const ArtworkChange& artwork);

/// What a reader will find after such a rewrite, without doing it: for a dry run.
SongTags tagsAfter(const SongFile& song, const SongTags& tags);

}  // namespace quaverly::library
