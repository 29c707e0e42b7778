#pragma once

#include <cstdint>
#include <optional>

#include "Platform/AVFoundation/Bytes.h"

namespace quaverly::tags {

/// What a file is by its content. `other` may still be MPEG audio behind something that nobody knows.
enum class Container {
  other,
  mpeg,
  flac,
  oggFlac,
  oggVorbis,
  oggOpus,
  oggSpeex,
  mp4,
  monkeysAudio,
  wavPack,
  musepack
};

/// How many bytes `containerOf` wants to see.
inline constexpr size_t containerMarkLength = 64;

/// Told by the bytes at the beginning of a file, or behind its leading ID3v2 tags.
Container containerOf(Bytes beginning);

/// What the header of an MPEG audio frame (layers I to III) says.
struct MpegFrame {
  uint32_t length;  ///< in bytes, header included
  uint32_t stream;  ///< the bits that all frames of a stream share

  static constexpr size_t headerLength = 4;
  static std::optional<MpegFrame> parse(Bytes header);
};

/// Whether MPEG audio begins soon behind `offset`: two frames of one stream in a row, or a last one that ends
/// where the audio does, at `end`.
bool containsMpegAudio(int descriptor, uint64_t offset, uint64_t end);

}  // namespace quaverly::tags
