#include "Platform/AVFoundation/TagLibReading.h"

#include <taglib/apefile.h>
#include <taglib/apetag.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/mp4file.h>
#include <taglib/mpcfile.h>
#include <taglib/oggflacfile.h>
#include <taglib/opusfile.h>
#include <taglib/speexfile.h>
#include <taglib/tpropertymap.h>
#include <taglib/vorbisfile.h>
#include <taglib/wavpackfile.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "Platform/AVFoundation/ID3Text.h"
#include "Platform/AVFoundation/TagLibStream.h"

namespace quaverly::tags {
namespace {

using Pictures = std::vector<Picture>;

constexpr std::array<std::pair<const char*, TagContents::Field>, 6> properties{{
    {"TITLE", &TagContents::title},
    {"ARTIST", &TagContents::artist},
    {"ALBUM", &TagContents::album},
    {"GENRE", &TagContents::genre},
    {"TRACKNUMBER", &TagContents::track},
    {"DATE", &TagContents::year},
}};

void readTexts(const TagLib::PropertyMap& map, TagContents& contents) {
  for (const auto& [key, field] : properties) {
    for (const auto& value : map[key]) {
      if (value.isEmpty() || value.size() > longestText) continue;
      contents.set(field, value.to8Bit(true));
      break;
    }
  }
}

void addPicture(Pictures& pictures, uint8_t kind, const TagLib::ByteVector& image) {
  if (image.isEmpty()) return;
  const auto kept = std::make_shared<const TagLib::ByteVector>(image);
  pictures.push_back({kind, NSData(kept, std::as_bytes(std::span(kept->data(), kept->size())))});
}

void addPictures(Pictures& pictures, const TagLib::List<TagLib::FLAC::Picture*>& list) {
  for (const auto* picture : list)
    addPicture(pictures, static_cast<uint8_t>(picture->type()), picture->data());
}

void addPictures(Pictures& pictures, TagLib::FLAC::File& file) {
  if (file.xiphComment()) addPictures(pictures, file.xiphComment()->pictureList());
  addPictures(pictures, file.pictureList());
}

/// Vorbis, Opus, Speex and FLAC within Ogg.
template <class File>
requires requires(File file) {
  file.tag()->pictureList();
}
void addPictures(Pictures& pictures, File& file) {
  if (file.tag()) addPictures(pictures, file.tag()->pictureList());
}

/// The covers of an MP4 file have no kind; the first is the front.
void addPictures(Pictures& pictures, TagLib::MP4::File& file) {
  if (!file.tag() || !file.tag()->contains("covr")) return;
  uint8_t kind = Picture::frontCover;
  for (const auto& cover : file.tag()->item("covr").toCoverArtList())
    addPicture(pictures, std::exchange(kind, 0), cover.data());
}

/// Monkey's Audio, WavPack and Musepack; a picture is a name, a zero and the image.
template <class File>
requires requires(File file) {
  file.APETag();
}
void addPictures(Pictures& pictures, File& file) {
  if (!file.APETag()) return;
  for (const auto& [key, item] : file.APETag()->itemListMap()) {
    if (!key.upper().startsWith("COVER ART (")) continue;
    const auto value = item.binaryData();
    const int zero = value.find('\0');
    const bool isFront = key.upper() == "COVER ART (FRONT)";
    if (zero >= 0)
      addPicture(pictures, isFront ? Picture::frontCover : uint8_t{0},
                 value.mid(static_cast<unsigned>(zero) + 1));
  }
}

template <class File>
TagContents contentsOf(File& file, const char* format) {
  TagContents contents{.format = format};
  if (!file.isValid()) return contents;
  readTexts(file.properties(), contents);
  addPictures(contents.pictures, file);
  return contents;
}

template <class File>
TagContents readFile(TagLib::IOStream& stream, const char* format) {
  File file(&stream, false);
  return contentsOf(file, format);
}

TagContents readFLAC(TagLib::IOStream& stream) {
  TagLib::FLAC::File file(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
  return contentsOf(file, "Vorbis comment");
}

TagContents readContainer(Container container, TagLib::IOStream& stream) {
  switch (container) {
    case Container::flac:
      return readFLAC(stream);
    case Container::oggFlac:
      return readFile<TagLib::Ogg::FLAC::File>(stream, "Vorbis comment");
    case Container::oggVorbis:
      return readFile<TagLib::Ogg::Vorbis::File>(stream, "Vorbis comment");
    case Container::oggOpus:
      return readFile<TagLib::Ogg::Opus::File>(stream, "Vorbis comment");
    case Container::oggSpeex:
      return readFile<TagLib::Ogg::Speex::File>(stream, "Vorbis comment");
    case Container::mp4:
      return readFile<TagLib::MP4::File>(stream, "MP4");
    case Container::monkeysAudio:
      return readFile<TagLib::APE::File>(stream, "APE");
    case Container::wavPack:
      return readFile<TagLib::WavPack::File>(stream, "APE");
    case Container::musepack:
      return readFile<TagLib::MPC::File>(stream, "APE");
    case Container::mpeg:
    case Container::other:
      break;
  }
  return {};
}

}  // namespace

TagContents readWithTagLib(int descriptor, const TagsAround& around) {
  const auto stream = makeTagLibStream(descriptor, StreamAccess::read, around.audioOffset);
  return readContainer(around.container, *stream);
}

}  // namespace quaverly::tags
