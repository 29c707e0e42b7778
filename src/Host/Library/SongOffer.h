#pragma once

#include <optional>
#include <string>

#include "Host/Library/FileDescriptor.h"
#include "Host/Library/Result.h"
#include "Host/Library/SongTags.h"
#include "Host/Library/TagRewriter.h"

namespace quaverly::library {

/// A song as it is offered for filing: its source, open and measured, and what is wanted of it.
struct SongOffer {
  FileDescriptor source;
  std::string sourcePath;
  SongFile file;
  ContentHash audio;    ///< as `audioHash` has it
  ContentHash content;  ///< of all bytes that are taken over: those at `file.audioOffset`
  SongTags wanted;
  ArtworkChange artwork;
  std::optional<RewrittenMpeg> rewritten;  ///< MPEG: what will stand around the audio
  SongTags after;                          ///< what a reader will find
};

/// Opens and measures a source, which is only read. Its reasons do not name the file.
Result<SongOffer> offerSong(const std::string& sourcePath, const SongTags& wanted,
                            const ArtworkChange& artwork);

/// The hash of what is taken over of a file, as `SongOffer::content` has it; nothing when it cannot be read.
std::optional<ContentHash> contentOf(int descriptor, const SongFile& file);

/// What is said of a source that is no longer what was offered.
Failure sourceChanged();

}  // namespace quaverly::library
