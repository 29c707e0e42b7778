#include <taglib/flacfile.h>
#include <taglib/id3v1tag.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/opusfile.h>
#include <taglib/tiostream.h>
#include <taglib/vorbisfile.h>

#include <cstdint>
#include <limits>

#include "Host/Library/ContainerTags.h"
#include "Host/Library/TagChange.h"
#include "Host/Library/TagRewriter.h"
#include "Platform/AVFoundation/TagLibStream.h"

namespace quaverly::library {
namespace {

TagLib::String text(const std::string& utf8) {
  return {utf8, TagLib::String::UTF8};
}

/// Tags that a FLAC file has beside its own, which few players look at.
void keepInStep(TagLib::Tag* tag, const SongTags& wanted) {
  if (!tag) return;
  tag->setTitle(text(wanted.title.value_or("")));
  tag->setArtist(text(wanted.artist.value_or("")));
  tag->setAlbum(text(wanted.album.value_or("")));
  tag->setTrack(static_cast<unsigned>(wanted.trackNumber));
  tag->setYear(static_cast<unsigned>(wanted.year));
}

bool rewriteFLAC(TagLib::IOStream& stream, const TagChange& change) {
  TagLib::FLAC::File file(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
  if (!file.isValid()) return false;
  rewriteVorbisComment(*file.xiphComment(true), change);
  rewritePictures(file, change.artwork);
  keepInStep(file.hasID3v2Tag() ? file.ID3v2Tag() : nullptr, change.wanted);
  keepInStep(file.hasID3v1Tag() ? file.ID3v1Tag() : nullptr, change.wanted);
  return file.save();
}

template <class File>
bool rewriteOgg(TagLib::IOStream& stream, const TagChange& change) {
  File file(&stream, false);
  if (!file.isValid() || !file.tag()) return false;
  rewriteVorbisComment(*file.tag(), change);
  rewritePictures(*file.tag(), change.artwork);
  return file.save();
}

bool rewriteMP4(TagLib::IOStream& stream, const TagChange& change) {
  TagLib::MP4::File file(&stream, false);
  if (!file.isValid() || !file.tag()) return false;
  rewriteMP4Items(*file.tag(), change);
  return file.save();
}

bool rewrite(AudioKind kind, TagLib::IOStream& stream, const TagChange& change) {
  switch (kind) {
    case AudioKind::flac:
      return rewriteFLAC(stream, change);
    case AudioKind::oggVorbis:
      return rewriteOgg<TagLib::Ogg::Vorbis::File>(stream, change);
    case AudioKind::oggOpus:
      return rewriteOgg<TagLib::Ogg::Opus::File>(stream, change);
    case AudioKind::mp4:
      return rewriteMP4(stream, change);
    case AudioKind::mpeg:
      break;
  }
  return false;
}

}  // namespace

std::optional<SongTags> rewriteInPlace(int descriptor, const SongFile& song, const SongTags& tags,
                                       const ArtworkChange& artwork) {
  const TagChange change{.wanted = writable(tags), .found = song.tags, .artwork = artwork};
  constexpr auto everything = std::numeric_limits<uint64_t>::max();
  const auto stream = tags::makeTagLibStream(descriptor, tags::StreamAccess::readAndWrite, 0, everything);
  if (!rewrite(song.kind, *stream, change) || !stream->isOpen()) return std::nullopt;
  const auto rewritten = inspectSong(descriptor);
  return rewritten ? std::optional(rewritten->tags) : std::nullopt;
}

}  // namespace quaverly::library
