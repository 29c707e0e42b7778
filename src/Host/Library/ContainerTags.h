#pragma once

#include "Host/Library/TagChange.h"

namespace TagLib::FLAC {
class File;
}
namespace TagLib::MP4 {
class Tag;
}
namespace TagLib::Ogg {
class XiphComment;
}

namespace quaverly::library {

/// Changes the tags of containers other than MPEG's, in memory. Values that read to what is wanted stay as
/// they are; sort values go with the names that they are for; all others stay.

/// The texts of a Vorbis comment, pictures left out.
void rewriteVorbisComment(TagLib::Ogg::XiphComment& comment, const TagChange& change);

void rewritePictures(TagLib::Ogg::XiphComment& comment, const ArtworkChange& artwork);
/// A FLAC file has pictures in blocks of its own.
void rewritePictures(TagLib::FLAC::File& file, const ArtworkChange& artwork);

/// Texts and covers. An MP4 file's first cover is the front.
void rewriteMP4Items(TagLib::MP4::Tag& tag, const TagChange& change);

}  // namespace quaverly::library
