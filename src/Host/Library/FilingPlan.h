#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Host/Library/Catalogue.h"
#include "Host/Library/LibraryNames.h"
#include "Host/Library/Result.h"
#include "Host/Library/SongOffer.h"
#include "Host/Library/SongTags.h"

namespace quaverly::library {

/// What filing a song comes to.
struct FilingPlan {
  std::string artistFolder;  ///< a name, as are the next two
  std::string albumFolder;
  std::string fileName;
  std::string path;                        ///< all of it, absolute
  SongTags before;                         ///< as a reader finds them in the source
  SongTags after;                          ///< as a reader will find them in the library
  std::string cover;                       ///< as in `SongRecord`
  std::optional<std::string> duplicateOf;  ///< the same song in the library: nothing will be filed
  std::optional<std::string> namesake;     ///< another song that has the name already: this one gets a number
};

/// Works out where songs go in a library. Reads the library and the catalogue, changes neither.
class FilingPlanner {
 public:
  /// The catalogue must outlive the planner.
  FilingPlanner(std::string libraryFolder, Catalogue& catalogue);

  /// Fails when the catalogue cannot be read, or the library's own path leaves no room for names.
  Result<FilingPlan> plan(const SongOffer& offer) const;

  /// From now on counts a planned song as filed, so that plans for many songs come out as their import.
  void promise(const SongOffer& offer, const FilingPlan& plan);

 private:
  struct Promise {
    ContentHash audio;
    SongTags tags;
    std::string cover;
    std::string path;
  };
  void chooseName(const SongOffer& offer, size_t longestName, FilingPlan& plan) const;
  Result<std::optional<std::string>> sameSong(const SongOffer& offer, const FilingPlan& plan) const;
  bool isFiledHere(const SongRecord& song) const;

  std::string _libraryFolder;
  Catalogue& _catalogue;
  LibraryNames _names;
  std::vector<Promise> _promises;
};

}  // namespace quaverly::library
