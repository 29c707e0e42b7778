#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Host/Library/SourceFrames.h"
#include "Host/Library/TagChange.h"

namespace quaverly::library {

/// Writes the new ID3v2 tag of a song: frames that stay as they were found, a changed one in the place of the
/// first that it replaces, new ones at the end.
class LeadingTagWriter {
 public:
  /// Both must outlive this object.
  LeadingTagWriter(SourceFrames& source, const TagChange& change);

  /// What really becomes of the pictures: `keep` when the new one is the one that is there.
  ArtworkChange::Kind artwork() const { return _artwork; }

  /// The whole tag, filled up so that audio behind it is aligned; empty when it has nothing to say. Nothing
  /// when the frames are too many or too long for a tag. To be called once.
  std::optional<std::string> write();

 private:
  void add(const tags::ID3v2Frame& frame);
  void addText(Field field);
  void addPicture(const tags::ID3v2Frame& frame);
  void addFrontCover();

  SourceFrames& _source;
  const TagChange& _change;
  std::vector<Field> _changed;  // fields whose frames do not stay
  std::vector<Field> _due;      // those of them whose new frame is still to be written
  ArtworkChange::Kind _artwork;
  bool _coverDue;
  bool _fits = true;
  std::string _frames;
};

}  // namespace quaverly::library
