// What is rewritten must read to what was wanted, and sound as before.
#include <string>

#include "Host/Library/TagRewriter.h"
#include "MemoryFile.h"

namespace library = quaverly::library;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  static quaverly::fuzz::MemoryFile source;
  static quaverly::fuzz::MemoryFile result;
  // Two frames of silence, so that many an input is a song.
  static const std::string frame = "\xff\xfb\x90\x64" + std::string(413, '\0');
  const std::string file = std::string(reinterpret_cast<const char*>(bytes), size) + frame + frame;
  source.setContents(file);
  const auto song = library::inspectSong(source.descriptor());
  if (!song || song->kind != library::AudioKind::mpeg) return 0;
  const library::SongTags wanted{
      .title = "Title", .artist = "\u00c4rzte \u65e5", .trackNumber = 3, .year = 2014};
  const auto plan = library::rewriteMpeg(source.descriptor(), *song, wanted,
                                         {library::ArtworkChange::Kind::replace, quaverly::NSData("cover")});
  if (!plan) return 0;
  result.setContents(plan->head + file.substr(song->audioOffset, song->audioLength) + plan->tail);
  const auto after = library::inspectSong(result.descriptor());
  if (!after || after->tags != wanted || !after->hasArtwork) std::abort();
  if (library::audioHash(result.descriptor(), *after) != library::audioHash(source.descriptor(), *song))
    std::abort();
  return 0;
}
