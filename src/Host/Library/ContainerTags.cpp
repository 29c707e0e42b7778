#include "Host/Library/ContainerTags.h"

#include <taglib/flacfile.h>
#include <taglib/mp4tag.h>
#include <taglib/xiphcomment.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "Host/Library/ArtworkMatch.h"
#include "Host/Library/ImageFormat.h"

namespace quaverly::library {
namespace {

using tags::TagContents;
using ArtworkKind = ArtworkChange::Kind;
using FlacPicture = TagLib::FLAC::Picture;

struct FieldNames {
  Field field;
  const char* vorbis;
  const char* vorbisSort;
  const char* mp4;
  const char* mp4Sort;
};

constexpr std::array fieldNames{
    FieldNames{&TagContents::title, "TITLE", "TITLESORT", "\251nam", "sonm"},
    FieldNames{&TagContents::artist, "ARTIST", "ARTISTSORT", "\251ART", "soar"},
    FieldNames{&TagContents::album, "ALBUM", "ALBUMSORT", "\251alb", "soal"},
    FieldNames{&TagContents::track, "TRACKNUMBER", nullptr, "trkn", nullptr},
    FieldNames{&TagContents::year, "DATE", nullptr, "\251day", nullptr},
};

TagLib::String text(const std::string& utf8) {
  return {utf8, TagLib::String::UTF8};
}

/// The first value that is not empty.
std::string firstOf(const TagLib::StringList& values) {
  for (const auto& value : values) {
    if (!value.isEmpty()) return value.to8Bit(true);
  }
  return {};
}

tags::Bytes bytesOf(const TagLib::ByteVector& data) {
  return {reinterpret_cast<const uint8_t*>(data.data()), data.size()};
}

TagLib::ByteVector vectorOf(const NSData& data) {
  return {data.text().data(), static_cast<unsigned>(data.length())};
}

/// The picture that a reader shows for the song: the last front cover, or else the last.
const FlacPicture* shownPicture(const std::vector<FlacPicture*>& pictures) {
  const FlacPicture* shown = nullptr;
  for (const auto* picture : pictures) {
    const bool isFront = picture->type() == FlacPicture::FrontCover;
    if (isFront || !shown || shown->type() != FlacPicture::FrontCover) shown = picture;
  }
  return shown;
}

/// Only pointers: a copy of the list itself would delete the pictures as soon as the two lists differ.
template <class Holder>
std::vector<FlacPicture*> picturesOf(Holder& holder) {
  std::vector<FlacPicture*> pictures;
  for (auto* picture : holder.pictureList()) pictures.push_back(picture);
  return pictures;
}

std::unique_ptr<FlacPicture> frontCover(const NSData& image) {
  auto cover = std::make_unique<FlacPicture>();
  cover->setType(FlacPicture::FrontCover);
  cover->setMimeType(std::string(imageFormatOf(image.text()).mediaType));
  cover->setData(vectorOf(image));
  return cover;
}

void removePictures(TagLib::Ogg::XiphComment& comment) {
  comment.removeAllPictures();
}

/// Some files keep pictures in the comment as well, as other containers do.
void removePictures(TagLib::FLAC::File& file) {
  file.removePictures();
  file.xiphComment(true)->removeAllPictures();
}

/// Vorbis comments and FLAC files keep their pictures alike.
template <class Holder>
void rewritePicturesOf(Holder& holder, const ArtworkChange& artwork) {
  if (artwork.kind == ArtworkKind::keep) return;
  if (artwork.kind == ArtworkKind::remove) return removePictures(holder);
  const auto pictures = picturesOf(holder);
  const auto* shown = shownPicture(pictures);
  if (shown && isSamePicture(artwork.image, bytesOf(shown->data()))) return;
  for (auto* picture : pictures) {
    if (picture->type() == FlacPicture::FrontCover) holder.removePicture(picture);
  }
  holder.addPicture(frontCover(artwork.image).release());  // which owns it then
}

/// Asking a tag for an item that it has not would add an empty one.
TagLib::MP4::Item itemIn(const TagLib::MP4::Tag& tag, const char* key) {
  return tag.contains(key) ? tag.item(key) : TagLib::MP4::Item();
}

bool staysAsWritten(const TagLib::MP4::Item& item, const FieldNames& names, const std::string& wanted) {
  if (names.field == &TagContents::track)
    return readsTo(wanted, names.field, std::to_string(item.toIntPair().first));
  return readsTo(wanted, names.field, firstOf(item.toStringList()));
}

/// A track number stands beside the number of all tracks, which stays.
TagLib::MP4::Item itemFor(const TagLib::MP4::Item& found, const FieldNames& names, const TagChange& change) {
  if (names.field != &TagContents::track)
    return TagLib::StringList(text(valueOf(change.wanted, names.field)));
  const int total = found.isValid() ? found.toIntPair().second : 0;
  return {change.wanted.trackNumber, total};
}

void rewriteCovers(TagLib::MP4::Tag& tag, const ArtworkChange& artwork) {
  constexpr const char* key = "covr";
  if (artwork.kind == ArtworkKind::keep) return;
  if (artwork.kind == ArtworkKind::remove) return tag.removeItem(key);
  const auto found = itemIn(tag, key).toCoverArtList();
  if (!found.isEmpty() && isSamePicture(artwork.image, bytesOf(found.front().data()))) return;
  const bool isPNG = imageFormatOf(artwork.image.text()).threeLetters == "PNG";
  TagLib::MP4::CoverArtList covers;
  covers.append({isPNG ? TagLib::MP4::CoverArt::PNG : TagLib::MP4::CoverArt::JPEG, vectorOf(artwork.image)});
  for (auto cover = found.begin(); cover != found.end(); ++cover) {
    if (cover != found.begin()) covers.append(*cover);
  }
  tag.setItem(key, covers);
}

}  // namespace

void rewriteVorbisComment(TagLib::Ogg::XiphComment& comment, const TagChange& change) {
  for (const auto& names : fieldNames) {
    const auto wanted = valueOf(change.wanted, names.field);
    if (!readsTo(wanted, names.field, firstOf(comment.fieldListMap()[names.vorbis]))) {
      comment.removeFields(names.vorbis);
      if (!wanted.empty()) comment.addField(names.vorbis, text(wanted));
    }
    if (names.vorbisSort && change.changes(names.field)) comment.removeFields(names.vorbisSort);
  }
}

void rewritePictures(TagLib::Ogg::XiphComment& comment, const ArtworkChange& artwork) {
  rewritePicturesOf(comment, artwork);
}

void rewritePictures(TagLib::FLAC::File& file, const ArtworkChange& artwork) {
  rewritePicturesOf(file, artwork);
}

void rewriteMP4Items(TagLib::MP4::Tag& tag, const TagChange& change) {
  for (const auto& names : fieldNames) {
    const auto found = itemIn(tag, names.mp4);
    const auto wanted = valueOf(change.wanted, names.field);
    if (found.isValid() ? !staysAsWritten(found, names, wanted) : !wanted.empty()) {
      tag.removeItem(names.mp4);
      if (!wanted.empty()) tag.setItem(names.mp4, itemFor(found, names, change));
    }
    if (names.mp4Sort && change.changes(names.field)) tag.removeItem(names.mp4Sort);
  }
  rewriteCovers(tag, change.artwork);
}

}  // namespace quaverly::library
