#include "Platform/AVFoundation/AudioContent.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "Platform/AVFoundation/FileBytes.h"

namespace quaverly::tags {
namespace {

/// Junk in front of the audio is rarely longer.
constexpr size_t searchLength = size_t{64} << 10;

struct Mark {
  size_t offset;
  std::string_view text;
  Container container;
};

/// The first packet of an Ogg stream lies behind a page header of 27 bytes and one for its length.
constexpr size_t oggPacket = 28;
constexpr std::string_view ogg = "OggS";

constexpr std::array marks{
    Mark{0, "fLaC", Container::flac},         Mark{4, "ftyp", Container::mp4},
    Mark{0, "MAC ", Container::monkeysAudio}, Mark{0, "wvpk", Container::wavPack},
    Mark{0, "MPCK", Container::musepack},     Mark{0, "MP+", Container::musepack},
};

constexpr std::array oggMarks{
    Mark{oggPacket, "\x01vorbis", Container::oggVorbis},
    Mark{oggPacket, "OpusHead", Container::oggOpus},
    Mark{oggPacket,
         "\x7f"
         "FLAC",
         Container::oggFlac},
    Mark{oggPacket, "Speex   ", Container::oggSpeex},
};

template <size_t count>
Container markedIn(const std::array<Mark, count>& known, Bytes beginning) {
  const auto* mark = std::ranges::find_if(
      known, [&](const Mark& m) { return asText(part(beginning, m.offset)).starts_with(m.text); });
  return mark == known.end() ? Container::other : mark->container;
}

/// Kilobits per second by the index in the header; 0 for what is not allowed or not told.
constexpr uint16_t bitrates[5][16] = {
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448, 0},  // version 1, layer I
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 0},     // version 1, layer II
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0},      // version 1, layer III
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256, 0},     // versions 2 and 2.5, layer I
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0},          // the same, layers II and III
};
constexpr std::array<uint32_t, 3> sampleRates{44100, 48000, 32000};

}  // namespace

Container containerOf(Bytes beginning) {
  if (asText(beginning).starts_with(ogg)) return markedIn(oggMarks, beginning);
  if (MpegFrame::parse(beginning)) return Container::mpeg;
  return markedIn(marks, beginning);
}

std::optional<MpegFrame> MpegFrame::parse(Bytes header) {
  if (header.size() < headerLength || header[0] != 0xff || (header[1] & 0xe0) != 0xe0) return std::nullopt;
  const unsigned version = header[1] >> 3 & 3;  // 0: 2.5, 2: 2, 3: 1
  const unsigned layer = 4 - (header[1] >> 1 & 3);
  const unsigned rate = header[2] >> 2 & 3;
  if (version == 1 || layer == 4 || rate == 3) return std::nullopt;
  const bool isFirst = version == 3;
  const unsigned row = isFirst ? layer - 1 : layer == 1 ? 3 : 4;
  const uint32_t bits = bitrates[row][header[2] >> 4] * 1000u;
  if (bits == 0) return std::nullopt;
  const uint32_t hertz = sampleRates[rate] >> (isFirst ? 0 : version == 2 ? 1 : 2);
  const uint32_t padding = header[2] >> 1 & 1;
  const uint32_t samplesPerByte = layer == 3 && !isFirst ? 72 : 144;
  const uint32_t length =
      layer == 1 ? (12 * bits / hertz + padding) * 4 : samplesPerByte * bits / hertz + padding;
  return MpegFrame{.length = length, .stream = bigEndian(header.first(3)) & 0xfffe0c};
}

namespace {

/// Whether the frame that `window` has at `position` is followed by another of its stream or ends the audio.
/// The window lies at `offset` in the file.
bool isFollowed(int descriptor, const MpegFrame& frame, uint64_t position, uint64_t end) {
  const uint64_t behind = position + frame.length;
  if (behind >= end) return behind == end;
  std::array<uint8_t, MpegFrame::headerLength> header;
  if (end - behind < header.size() || readAt(descriptor, behind, header) < header.size()) return false;
  const auto next = MpegFrame::parse(header);
  return next && next->stream == frame.stream;
}

bool containsMpegAudioIn(int descriptor, Bytes window, uint64_t offset, uint64_t end) {
  for (size_t i = 0; i + MpegFrame::headerLength <= window.size(); ++i) {
    const void* found = std::memchr(window.data() + i, 0xff, window.size() - i);
    if (!found) return false;
    i = static_cast<size_t>(static_cast<const uint8_t*>(found) - window.data());
    const auto frame = MpegFrame::parse(window.subspan(i));
    if (frame && isFollowed(descriptor, *frame, offset + i, end)) return true;
  }
  return false;
}

}  // namespace

bool containsMpegAudio(int descriptor, uint64_t offset, uint64_t end) {
  for (const size_t wanted : {size_t{64}, searchLength}) {
    const auto length = static_cast<size_t>(std::min<uint64_t>(wanted, end - offset));
    const auto window = FileBytes::read(descriptor, offset, length);
    if (containsMpegAudioIn(descriptor, window.bytes(), offset, end)) return true;
  }
  return false;
}

}  // namespace quaverly::tags
