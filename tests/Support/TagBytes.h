#pragma once

#include <string>
#include <string_view>

namespace quaverly::test {

// Tags as a tagger writes them, byte by byte.

/// A number of `count` bytes, the highest first, with `bits` bits in each.
std::string number(size_t value, int count, int bits = 8);

/// A frame; its size is syncsafe in 2.4. The id of 2.2 has three characters, and such a frame no flags.
std::string frame(int version, std::string_view id, std::string_view body, unsigned flags = 0);
/// A text frame in Latin-1.
std::string textFrame(int version, std::string_view id, std::string_view text);
std::string pictureFrame(int version, std::string_view image, int kind = 3);

/// A tag with `frames` for its body.
std::string tag(int version, std::string_view frames, unsigned flags = 0);

/// A zero behind each 0xff, whether or not it is needed there.
std::string stuffed(std::string_view bytes);
std::string deflated(std::string_view bytes);

std::string id3v1(std::string_view title, std::string_view artist, std::string_view album,
                  std::string_view year, int track, int genre);

std::string apeItem(std::string_view key, std::string_view value, unsigned flags = 0);
/// Header, items and footer.
std::string apeTag(std::string_view items, unsigned count);

/// Silent MPEG frames, 128 kbit/s at 44.1 kHz.
std::string mpegFrames(int count = 20);

}  // namespace quaverly::test
