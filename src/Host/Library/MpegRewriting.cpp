#include <utility>

#include "Host/Library/LeadingTagWriter.h"
#include "Host/Library/SourceFrames.h"
#include "Host/Library/TagChange.h"
#include "Host/Library/TagRewriter.h"
#include "Host/Library/TrailingTags.h"
#include "Platform/AVFoundation/TagsAround.h"

namespace quaverly::library {

std::optional<RewrittenMpeg> rewriteMpeg(int descriptor, const SongFile& song, const SongTags& tags,
                                         const ArtworkChange& artwork) {
  auto around = tags::TagsAround::read(descriptor, song.length);
  const bool isAsInspected =
      around.audioOffset == song.audioOffset && around.audioEnd == song.audioOffset + song.audioLength;
  if (!isAsInspected) return std::nullopt;
  const TagChange change{.wanted = writable(tags), .found = song.tags, .artwork = artwork};
  SourceFrames source(around);
  LeadingTagWriter leading(source, change);
  auto head = leading.write();
  if (!head) return std::nullopt;
  return RewrittenMpeg{.head = std::move(*head),
                       .tail = rewrittenTail(around, change, leading.artwork()),
                       .tags = change.wanted};
}

}  // namespace quaverly::library
