#pragma once

#include <string>
#include <vector>

#include "Host/Library/Catalogue.h"
#include "Host/Library/Result.h"
#include "Host/Library/SongTags.h"

namespace quaverly::library {

/// What a download's metadata asks of its song's pictures: none named removes them, a JPEG or PNG file of the
/// device replaces the front cover, and anything else leaves them as they are.
ArtworkChange artworkOf(const DownloadMetadata& metadata);

/// Copies of covers in the data folder, for as long as a download needs them. Each is named by its content,
/// so that an album's songs share one. Any thread.
class ArtworkStore {
 public:
  explicit ArtworkStore(std::string dataFolder);

  /// Keeps a copy of a picture and returns its name.
  Result<std::string> keep(const NSData& image) const;
  /// A copy, its content checked against its name.
  Result<NSData> image(const std::string& name) const;
  void remove(const std::string& name) const;
  /// The names of all copies.
  std::vector<std::string> names() const;

 private:
  std::string path(const std::string& name) const;

  std::string _folder;
};

/// The artwork of a download in the catalogue, as it was when the download was added.
Result<ArtworkChange> artworkOf(const DownloadRecord& record, const ArtworkStore& store);

}  // namespace quaverly::library
