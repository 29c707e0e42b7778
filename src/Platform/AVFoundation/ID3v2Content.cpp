#include "Platform/AVFoundation/ID3v2Content.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <span>

namespace quaverly::tags {
namespace {

/// What the flags of a frame say about its body, and the fields that stand before the content.
struct Layout {
  bool compressed = false;
  bool encrypted = false;
  size_t fields = 0;                        ///< bytes before the content
  std::optional<size_t> lengthIndicator{};  ///< where the field with the original length lies
};

Layout layoutOf23(uint16_t flags) {
  Layout layout{.compressed = (flags & 0x0080) != 0, .encrypted = (flags & 0x0040) != 0};
  if (layout.compressed) layout.fields += 4;
  if ((flags & 0x0020) != 0) layout.fields += 1;
  return layout;
}

Layout layoutOf24(uint16_t flags) {
  Layout layout{.compressed = (flags & 0x0008) != 0, .encrypted = (flags & 0x0004) != 0};
  if ((flags & 0x0040) != 0) layout.fields += 1;
  if ((flags & 0x0001) != 0) {
    layout.lengthIndicator = layout.fields;
    layout.fields += 4;
  }
  return layout;
}

Layout layoutOf(const ID3v2Frame& frame) {
  if (frame.version == 2) return {};
  return frame.version == 3 ? layoutOf23(frame.flags) : layoutOf24(frame.flags);
}

/// Some taggers mark every frame as stuffed. One whose original length is the length that it has, is not.
bool isReallyStuffed(const ID3v2Frame& frame, const Layout& layout) {
  if (!frame.unsynchronised) return false;
  if (!layout.lengthIndicator || layout.compressed) return true;
  const auto original = syncsafe(frame.body.subspan(*layout.lengthIndicator, 4));
  return original != frame.body.size() - layout.fields;
}

bool hasStuffing(Bytes bytes) {
  constexpr std::array<uint8_t, 2> stuffed{0xff, 0};
  return std::ranges::search(bytes, stuffed).begin() != bytes.end();
}

/// A zlib stream over bytes in memory.
class Inflation {
 public:
  explicit Inflation(Bytes bytes) {
    _stream.next_in = const_cast<uint8_t*>(bytes.data());
    _stream.avail_in = static_cast<uInt>(bytes.size());
    _ready = inflateInit(&_stream) == Z_OK;
  }
  ~Inflation() { inflateEnd(&_stream); }
  Inflation(const Inflation&) = delete;
  Inflation& operator=(const Inflation&) = delete;

  /// Fills `into`; returns how much came, nothing when the stream is damaged.
  std::optional<size_t> read(std::span<uint8_t> into) {
    if (!_ready) return std::nullopt;
    _stream.next_out = into.data();
    _stream.avail_out = static_cast<uInt>(into.size());
    const int result = inflate(&_stream, Z_NO_FLUSH);
    _ended = result == Z_STREAM_END;
    if (result != Z_OK && !_ended) return std::nullopt;
    return into.size() - _stream.avail_out;
  }
  bool ended() const { return _ended; }

 private:
  z_stream _stream{};
  bool _ready = false;
  bool _ended = false;
};

/// How long `bytes` become, found without keeping them; nothing when damaged or longer than `limit`.
std::optional<size_t> inflatedLength(Bytes bytes, size_t limit) {
  Inflation inflation(bytes);
  std::array<uint8_t, 16384> scratch;
  size_t length = 0;
  while (!inflation.ended()) {
    const auto count = inflation.read(scratch);
    if (!count || length + *count > limit) return std::nullopt;
    length += *count;
  }
  return length;
}

}  // namespace

bool saysItWhereItLies(const ID3v2Frame& frame) {
  const Layout layout = layoutOf(frame);
  return !frame.unsynchronised && !layout.compressed && !layout.encrypted && layout.fields == 0;
}

bool ID3v2Decoder::spend(size_t length) {
  const bool affordable = length <= _left;
  _left -= std::min(length, _left);
  return affordable;
}

std::optional<ID3v2Content> ID3v2Decoder::resynchronised(const ID3v2Content& content) {
  if (!hasStuffing(content.bytes)) return content;
  const size_t length = content.bytes.size();
  if (!spend(length)) return std::nullopt;
  auto storage = std::make_shared_for_overwrite<uint8_t[]>(length);
  std::ranges::copy(content.bytes, storage.get());
  const size_t remaining = resynchronise({storage.get(), length});
  return ID3v2Content{{storage.get(), remaining}, storage};
}

std::optional<ID3v2Content> ID3v2Decoder::inflated(const ID3v2Content& content) {
  const auto length = inflatedLength(content.bytes, _left);
  if (!length) {
    // What it cost to find out counts as well: a thousand such frames must not cost a thousand times as much.
    spend(std::max<size_t>(_left / 4, 1));
    return std::nullopt;
  }
  if (!spend(*length)) return std::nullopt;
  auto storage = std::make_shared_for_overwrite<uint8_t[]>(*length);
  Inflation inflation(content.bytes);
  if (inflation.read({storage.get(), *length}) != length) return std::nullopt;
  return ID3v2Content{{storage.get(), *length}, storage};
}

std::optional<ID3v2Content> ID3v2Decoder::content(const ID3v2Frame& frame) {
  const Layout layout = layoutOf(frame);
  if (layout.encrypted || frame.body.size() < layout.fields) return std::nullopt;
  std::optional<ID3v2Content> content{{frame.body.subspan(layout.fields), nullptr}};
  if (isReallyStuffed(frame, layout)) content = resynchronised(*content);
  if (content && layout.compressed) content = inflated(*content);
  return content;
}

}  // namespace quaverly::tags
