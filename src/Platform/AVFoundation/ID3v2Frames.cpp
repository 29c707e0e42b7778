#include "Platform/AVFoundation/ID3v2Frames.h"

#include <algorithm>
#include <array>

namespace quaverly::tags {
namespace {

bool isIdCharacter(uint8_t byte) {
  return (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
}

}  // namespace

size_t resynchronise(std::span<uint8_t> bytes) {
  size_t length = 0;
  for (size_t i = 0; i < bytes.size(); ++i) {
    const uint8_t byte = bytes[i];
    bytes[length++] = byte;
    if (byte == 0xff && i + 1 < bytes.size() && bytes[i + 1] == 0) ++i;
  }
  return length;
}

ID3v2Frames::ID3v2Frames(const ID3v2Header& header, LazyBytes& tag) : _tag(tag), _version(header.version) {
  if (!header.readable()) return;
  _rest = part(tag.bytes(), ID3v2Header::length, header.bodyLength);
  if (header.unsynchronised && _version < 4) {
    const auto body = tag.edit().last(tag.bytes().size() - ID3v2Header::length).first(_rest.size());
    _rest = body.first(resynchronise(body));
  } else {
    _unsynchronised = header.unsynchronised;
  }
  if (header.extended) skipExtendedHeader();
}

void ID3v2Frames::skipExtendedHeader() {
  loadHeader(_rest);
  // Some taggers set the flag and write no such header.
  if (_rest.size() < 4 || beginsFrame(_rest)) return;
  const auto size = _version == 3 ? bigEndian(_rest.first(4)) + uint64_t{4}
                                  : uint64_t{syncsafe(_rest.first(4)).value_or(bigEndian(_rest.first(4)))};
  if (size <= _rest.size()) _rest = _rest.subspan(static_cast<size_t>(size));
}

/// How many characters of id `bytes` begin with; 0 when it is no id. Some taggers left ids of 2.2, filled up
/// with a zero, in tags of 2.3.
size_t ID3v2Frames::idLengthAt(Bytes bytes) const {
  const size_t wanted = idLength();
  if (bytes.size() < wanted || !isIdCharacter(bytes[0]) || !isIdCharacter(bytes[1]) ||
      !isIdCharacter(bytes[2]))
    return 0;
  if (wanted == 3 || isIdCharacter(bytes[3])) return wanted;
  return bytes[3] == 0 ? 3 : 0;
}

bool ID3v2Frames::beginsFrame(Bytes bytes) const {
  return bytes.size() >= headerLength() && idLengthAt(bytes) > 0;
}

bool ID3v2Frames::isPadding() const {
  return std::ranges::all_of(part(_rest, 0, idLength()), [](uint8_t byte) { return byte == 0; });
}

/// Whether a frame with such a body is followed by what may follow one.
bool ID3v2Frames::endsPlausibly(size_t bodyLength) const {
  if (!fits(bodyLength)) return false;
  const Bytes behind = _rest.subspan(headerLength() + bodyLength);
  if (behind.size() < headerLength()) return true;
  loadHeader(behind);
  return behind[0] == 0 || beginsFrame(behind);
}

/// The length of the body of the frame at hand; nothing when no reading of its size fits into the tag.
/// Known taggers write plain sizes in 2.4, where they should be syncsafe, and a few the other way around in
/// 2.3: what follows decides, and the standard's reading when that does not.
std::optional<size_t> ID3v2Frames::bodyLength() const {
  if (_version == 2) {
    const size_t size = bigEndian(_rest.subspan(3, 3));
    return fits(size) ? std::optional(size) : std::nullopt;
  }
  const Bytes field = _rest.subspan(4, 4);
  std::array<std::optional<size_t>, 2> readings{bigEndian(field), syncsafe(field)};
  if (_version == 4) std::swap(readings[0], readings[1]);
  for (const auto& size : readings) {
    if (size && endsPlausibly(*size)) return size;
  }
  for (const auto& size : readings) {
    if (size && fits(*size)) return size;
  }
  return std::nullopt;
}

std::optional<ID3v2Frame> ID3v2Frames::next() {
  while (_rest.size() >= headerLength()) {
    loadHeader(_rest);
    if (isPadding()) break;
    const size_t characters = idLengthAt(_rest);
    const auto size = characters > 0 ? bodyLength() : std::nullopt;
    if (!size) {
      skipToPlausible();
      continue;
    }
    ID3v2Frame frame{.id = asText(_rest.first(characters)),
                     .version = _version,
                     .header = _rest.first(headerLength()),
                     .body = _rest.subspan(headerLength(), *size)};
    if (_version > 2) frame.flags = static_cast<uint16_t>(bigEndian(_rest.subspan(8, 2)));
    frame.unsynchronised = _version == 4 && (_unsynchronised || (frame.flags & 0x0002) != 0);
    _rest = _rest.subspan(headerLength() + *size);
    return frame;
  }
  _rest = {};
  return std::nullopt;
}

/// Stricter than what is asked of a frame behind an intact one, because pictures hold every sequence of
/// bytes.
bool ID3v2Frames::isPlausible() const {
  if (hasUndefinedFlags() || idLengthAt(_rest) != idLength()) return false;
  const auto size = bodyLength();
  return size && *size > 0 && endsPlausibly(*size);
}

bool ID3v2Frames::hasUndefinedFlags() const {
  if (_version == 2) return false;
  const uint16_t undefined = _version == 3 ? 0x1f1f : 0x8fb0;
  return (bigEndian(_rest.subspan(8, 2)) & undefined) != 0;
}

void ID3v2Frames::skipToPlausible() {
  constexpr size_t stretch = 16384;  // what is searched is loaded in pieces, not asked for at every byte
  size_t loaded = 0;
  do {
    _rest = _rest.subspan(1);
    if (loaded <= headerLength()) {
      loaded = std::min(stretch, _rest.size());
      _tag.load(_rest.first(loaded));
    } else {
      --loaded;
    }
  } while (_rest.size() >= headerLength() && !isPlausible());
}

}  // namespace quaverly::tags
