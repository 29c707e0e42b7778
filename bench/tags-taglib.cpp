// Reads the same with TagLib alone, without audio properties. tags-taglib FOLDER record|borrow
// "record" puts what it read into a record that outlives the file, as ours does; "borrow" only looks at it.
#include <taglib/attachedpictureframe.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>

#include <string_view>

#include "PassesOverFolder.h"

namespace {

using Picture = TagLib::ID3v2::AttachedPictureFrame;

/// All that a tag says, as a program keeps it that shows a song and then its next one.
struct Record {
  std::vector<std::pair<std::string, std::string>> texts;  // by the frames' ids
  std::string picture;
};

Record recordOf(TagLib::MPEG::File& file) {
  Record record;
  for (const auto* frame : file.ID3v2Tag()->frameList()) {
    const auto id = frame->frameID();
    if (const auto* picture = dynamic_cast<const Picture*>(frame)) {
      const auto bytes = picture->picture();
      record.picture.assign(bytes.data(), bytes.size());
    } else {
      record.texts.emplace_back(std::string(id.data(), id.size()), frame->toString().to8Bit(true));
    }
  }
  return record;
}

size_t borrow(TagLib::MPEG::File& file) {
  const auto* tag = file.tag();
  size_t length = 0;
  for (const auto& text : {tag->title(), tag->artist(), tag->album(), tag->genre()})
    length += text.to8Bit(true).size();
  for (const auto* frame : file.ID3v2Tag()->frameList("APIC")) {
    if (const auto* picture = dynamic_cast<const Picture*>(frame)) length += picture->picture().size();
  }
  return length + tag->track() % 2 + tag->year() % 2;
}

size_t readSong(const std::string& path, bool keeps) {
  TagLib::MPEG::File file(path.c_str(), false);
  if (!keeps) return borrow(file);
  const auto record = recordOf(file);
  return record.picture.size() + record.texts.size();
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) return 2;
  const std::string folder = std::string(arguments[1]) + "/";
  const bool keeps = std::string_view(arguments[2]) == "record";
  quaverly::bench::passOverFolder(folder,
                                  [&](const std::string& name) { return readSong(folder + name, keeps); });
}
