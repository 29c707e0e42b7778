#include <algorithm>
#include <array>
#include <vector>

#include "Host/Library/ContentHasher.h"
#include "Host/Library/TagRewriter.h"
#include "Platform/AVFoundation/FileBytes.h"
#include "Platform/AVFoundation/TagsAround.h"

namespace quaverly::library {
namespace {

/// Hashes pieces of a file. After a failed read the result is nothing.
class FileHasher {
 public:
  explicit FileHasher(int descriptor) : _descriptor(descriptor) {}

  void add(uint64_t offset, uint64_t length) {
    while (length > 0 && !_failed) {
      const auto piece = std::span(_piece).first(std::min<uint64_t>(length, _piece.size()));
      const size_t count = tags::readAt(_descriptor, offset, piece);
      if (count == 0) return fail();
      _hasher.add(std::as_bytes(piece.first(count)));
      offset += count;
      length -= count;
    }
  }

  void fail() { _failed = true; }

  std::optional<ContentHash> result() const {
    if (_failed) return std::nullopt;
    return _hasher.hash();
  }

 private:
  int _descriptor;
  ContentHasher _hasher;
  std::vector<uint8_t> _piece = std::vector<uint8_t>(size_t{256} << 10);
  bool _failed = false;
};

template <size_t count>
bool read(int descriptor, uint64_t offset, std::array<uint8_t, count>& into) {
  return tags::readAt(descriptor, offset, into) == count;
}

/// The frames behind the metadata blocks.
void addFLAC(FileHasher& hasher, int descriptor, const tags::TagsAround& around) {
  constexpr std::array<uint8_t, 4>::size_type headerLength = 4;
  uint64_t offset = around.audioOffset + headerLength;  // behind "fLaC"
  std::array<uint8_t, headerLength> header{};
  bool isLast = false;
  while (!isLast) {
    if (!read(descriptor, offset, header)) return hasher.fail();
    isLast = (header[0] & 0x80) != 0;
    offset += headerLength + tags::bigEndian(tags::Bytes(header).subspan(1));
  }
  if (offset > around.audioEnd) return hasher.fail();
  hasher.add(offset, around.audioEnd - offset);
}

/// What the pages carry behind the header packets. A writer may number pages anew and cut the headers into
/// other ones; the bytes of the packets stay.
class OggAudio {
 public:
  OggAudio(FileHasher& hasher, int descriptor, uint64_t length, int headerPackets)
      : _hasher(hasher), _descriptor(descriptor), _length(length), _headersLeft(headerPackets) {}

  void add() {
    uint64_t offset = 0;
    while (offset < _length) {
      std::array<uint8_t, 27> header{};
      if (!read(_descriptor, offset, header) || !tags::asText(header).starts_with("OggS")) break;
      const auto segments = std::span(_segments).first(header[26]);
      if (tags::readAt(_descriptor, offset + header.size(), segments) < segments.size()) break;
      offset = addPayload(offset + header.size() + segments.size(), segments);
    }
    if (_headersLeft > 0) _hasher.fail();
  }

 private:
  /// Returns where the payload ends. A segment shorter than 255 bytes ends a packet.
  uint64_t addPayload(uint64_t offset, tags::Bytes segments) {
    for (const uint8_t segment : segments) {
      if (_headersLeft == 0) {
        _hasher.add(offset, std::min<uint64_t>(segment, _length - std::min(offset, _length)));
      } else if (segment < 255) {
        --_headersLeft;
      }
      offset += segment;
    }
    return offset;
  }

  FileHasher& _hasher;
  int _descriptor;
  uint64_t _length;
  int _headersLeft;
  std::array<uint8_t, 255> _segments{};
};

/// The media data of an MP4 file, which lies in atoms at the top level.
void addMP4(FileHasher& hasher, int descriptor, uint64_t length) {
  uint64_t offset = 0;
  std::array<uint8_t, 8> header{};
  while (offset < length && read(descriptor, offset, header)) {
    uint64_t size = tags::bigEndian(tags::Bytes(header).first(4));
    uint64_t headerLength = header.size();
    if (size == 1) {
      std::array<uint8_t, 8> large{};
      if (!read(descriptor, offset + headerLength, large)) return;
      size = uint64_t{tags::bigEndian(tags::Bytes(large).first(4))} << 32 |
             tags::bigEndian(tags::Bytes(large).last(4));
      headerLength += large.size();
    }
    if (size == 0) size = length - offset;
    if (size < headerLength) return;
    const uint64_t whole = std::min(size, length - offset);
    if (tags::asText(header).ends_with("mdat") && whole > headerLength)
      hasher.add(offset + headerLength, whole - headerLength);
    offset += whole;
  }
}

void addAudio(FileHasher& hasher, int descriptor, const SongFile& song) {
  switch (song.kind) {
    case AudioKind::mpeg:
      return hasher.add(song.audioOffset, song.audioLength);
    case AudioKind::flac:
      return addFLAC(hasher, descriptor, tags::TagsAround::read(descriptor, song.length));
    case AudioKind::oggVorbis:
      return OggAudio(hasher, descriptor, song.length, 3).add();
    case AudioKind::oggOpus:
      return OggAudio(hasher, descriptor, song.length, 2).add();
    case AudioKind::mp4:
      return addMP4(hasher, descriptor, song.length);
  }
}

}  // namespace

std::string ContentHash::hex() const {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const uint8_t byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

std::optional<ContentHash> audioHash(int descriptor, const SongFile& song) {
  FileHasher hasher(descriptor);
  addAudio(hasher, descriptor, song);
  return hasher.result();
}

}  // namespace quaverly::library
