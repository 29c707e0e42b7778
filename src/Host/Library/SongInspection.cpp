#include <algorithm>

#include "Host/Library/TagRewriter.h"
#include "Host/Library/TagValues.h"
#include "Platform/AVFoundation/FileBytes.h"
#include "Platform/AVFoundation/TagReading.h"

namespace quaverly::library {
namespace {

using tags::Container;

std::optional<AudioKind> kindOf(int descriptor, const tags::TagsAround& around) {
  switch (around.container) {
    case Container::flac:
      return AudioKind::flac;
    case Container::oggVorbis:
      return AudioKind::oggVorbis;
    case Container::oggOpus:
      return AudioKind::oggOpus;
    case Container::mp4:
      return AudioKind::mp4;
    case Container::mpeg:
    case Container::other:
      if (tags::containsMpegAudio(descriptor, around.audioOffset, around.audioEnd)) return AudioKind::mpeg;
      return std::nullopt;
    case Container::oggFlac:
    case Container::oggSpeex:
    case Container::monkeysAudio:
    case Container::wavPack:
    case Container::musepack:
      break;
  }
  return std::nullopt;
}

bool hasPictures(const tags::TagContents& contents) {
  return !contents.pictures.empty();
}

}  // namespace

const char* fileExtension(AudioKind kind) {
  switch (kind) {
    case AudioKind::mpeg:
      return "mp3";
    case AudioKind::flac:
      return "flac";
    case AudioKind::oggVorbis:
      return "ogg";
    case AudioKind::oggOpus:
      return "opus";
    case AudioKind::mp4:
      return "m4a";
  }
  return "";
}

std::optional<SongFile> inspectSong(int descriptor) {
  const auto length = tags::lengthOfFile(descriptor);
  if (!length) return std::nullopt;
  auto around = tags::TagsAround::read(descriptor, *length);
  const auto kind = kindOf(descriptor, around);
  if (!kind) return std::nullopt;
  const auto groups = tags::readTags(descriptor, around);
  const bool isMpeg = kind == AudioKind::mpeg;
  return SongFile{.kind = *kind,
                  .length = *length,
                  .audioOffset = isMpeg ? around.audioOffset : 0,
                  .audioLength = isMpeg ? around.audioEnd - around.audioOffset : *length,
                  .tags = songTagsOf(groups),
                  .hasArtwork = std::ranges::any_of(groups, hasPictures)};
}

SongTags tagsAfter(const SongFile&, const SongTags& tags) {
  return writable(tags);
}

}  // namespace quaverly::library
