#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Host/Library/Catalogue.h"
#include "Host/Library/Result.h"
#include "Host/Library/SongTags.h"
#include "Host/Library/TagRewriter.h"

namespace quaverly::library {

/// A song as it is offered for filing: an open source, measured, and what is wanted of it.
struct SongOffer {
  int descriptor;          ///< the caller's
  std::string sourcePath;  ///< its last component names a song without a title
  SongFile file;
  ContentHash audio;
  SongTags tags;
  ArtworkChange artwork;
};

/// What filing a song comes to.
struct FilingPlan {
  std::string artistFolder;  ///< names, not paths
  std::string albumFolder;
  std::string fileName;
  std::string path;  ///< all of it, absolute
  SongTags before;
  SongTags after;
  ArtworkChange::Kind artwork = ArtworkChange::Kind::keep;
  std::string cover;                       ///< as in `SongRecord`
  std::optional<std::string> duplicateOf;  ///< the same song in the library: nothing will be filed
  std::optional<std::string> namesake;     ///< another song that has the name already: `path` has a number
};

/// Works out where a song goes in a library. Reads the library and the catalogue, changes neither.
class FilingPlanner {
 public:
  /// The catalogue must outlive the planner.
  FilingPlanner(std::string libraryFolder, Catalogue& catalogue);

  Result<FilingPlan> plan(const SongOffer& offer);

  /// From now on counts a planned song as filed, so that a plan for many songs comes out as their import.
  void promise(const SongOffer& offer, const FilingPlan& plan);

 private:
  struct Promise {
    std::string path;
    SongTags tags;
    ContentHash audio;
    std::string cover;
  };
  Result<std::optional<std::string>> sameSong(const SongOffer& offer, const FilingPlan& plan);

  std::string _libraryFolder;
  Catalogue& _catalogue;
  std::vector<Promise> _promises;
};

}  // namespace quaverly::library
