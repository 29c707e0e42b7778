#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Platform/Foundation/NSData.h"

namespace quaverly::library {

/// What every tag format can hold; a larger number is written as none.
inline constexpr int32_t largestTrackNumber = 65535;
inline constexpr int32_t largestYear = 9999;

/// The tags that an import decides. Absent (and 0) means none: the filed song then has no such tag.
struct SongTags {
  std::optional<std::string> title{};
  std::optional<std::string> artist{};
  std::optional<std::string> album{};
  int32_t trackNumber = 0;
  int32_t year = 0;
  bool operator==(const SongTags&) const = default;
};

/// What is to become of the pictures in a song.
struct ArtworkChange {
  enum class Kind {
    keep,     ///< the pictures stay as they are
    remove,   ///< the filed song has no picture
    replace,  ///< `image` becomes its front cover; other kinds of picture stay
  };
  Kind kind = Kind::keep;
  NSData image{};  ///< JPEG or PNG bytes
};

enum class AudioKind { mpeg, flac, oggVorbis, oggOpus, mp4 };

/// The ending that players know a kind of audio by: "mp3", "flac", "ogg", "opus", "m4a".
const char* fileExtension(AudioKind kind);

}  // namespace quaverly::library
