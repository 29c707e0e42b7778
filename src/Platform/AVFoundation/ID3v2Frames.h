#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "Platform/AVFoundation/Bytes.h"
#include "Platform/AVFoundation/ID3v2Header.h"
#include "Platform/AVFoundation/LazyBytes.h"

namespace quaverly::tags {

/// A frame where it lies in its tag. All of it borrows the tag's bytes.
struct ID3v2Frame {
  std::string_view id;  ///< three characters in 2.2 (and in tags that kept such ids), otherwise four
  uint8_t version = 0;
  uint16_t flags = 0;           ///< as written; none in 2.2
  bool unsynchronised = false;  ///< 2.4: bytes were stuffed into this frame
  Bytes header;
  Bytes body;
};

/// Walks the frames of a tag in file order. Every size is checked before it is used; a damaged frame is
/// skipped by looking for the next plausible one. Goes forward only, so the whole walk is linear in the tag's
/// length, and keeps nothing.
class ID3v2Frames {
 public:
  /// `tag` begins with the header and may be cut short. In a tag of 2.2 or 2.3 that was unsynchronised the
  /// stuffed bytes are taken out in place: the frames that come then are the ones that were written. The tag
  /// must outlive the walk and the frames.
  ID3v2Frames(const ID3v2Header& header, LazyBytes& tag);

  /// The header of the frame is in memory then, its body may have to be loaded.
  std::optional<ID3v2Frame> next();

 private:
  size_t headerLength() const { return _version == 2 ? 6 : 10; }
  size_t idLength() const { return _version == 2 ? 3 : 4; }
  size_t idLengthAt(Bytes bytes) const;
  bool beginsFrame(Bytes bytes) const;
  bool endsPlausibly(size_t bodyLength) const;
  bool fits(size_t bodyLength) const { return bodyLength <= _rest.size() - headerLength(); }
  std::optional<size_t> bodyLength() const;
  bool isPadding() const;
  bool isPlausible() const;
  bool hasUndefinedFlags() const;
  void skipExtendedHeader();
  void skipToPlausible();

  /// Brings what may be a header into memory.
  void loadHeader(Bytes at) const { _tag.load(part(at, 0, headerLength())); }

  LazyBytes& _tag;
  uint8_t _version;
  bool _unsynchronised = false;
  Bytes _rest;
};

/// Takes out the zero that was stuffed behind each 0xff, in place; returns how many bytes remain.
size_t resynchronise(std::span<uint8_t> bytes);

}  // namespace quaverly::tags
