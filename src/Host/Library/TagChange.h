#pragma once

#include "Host/Library/SongTags.h"
#include "Host/Library/TagValues.h"

namespace quaverly::library {

/// What an import changes in the tags of a file.
struct TagChange {
  SongTags wanted;  ///< writable
  SongTags found;   ///< what a reader finds in the file as it is
  const ArtworkChange& artwork;

  bool changes(Field field) const { return valueOf(wanted, field) != valueOf(found, field); }
};

}  // namespace quaverly::library
