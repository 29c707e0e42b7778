#include "Support/TagBytes.h"

#include <zlib.h>

namespace quaverly::test {
namespace {

std::string filled(std::string_view text, size_t length) {
  std::string field(text.substr(0, length));
  field.resize(length, '\0');
  return field;
}

std::string littleEndian(size_t value) {
  std::string bytes = number(value, 4);
  return {bytes.rbegin(), bytes.rend()};
}

}  // namespace

std::string number(size_t value, int count, int bits) {
  std::string bytes;
  for (int i = count - 1; i >= 0; --i) bytes += static_cast<char>(value >> (i * bits) & ((1u << bits) - 1));
  return bytes;
}

std::string frame(int version, std::string_view id, std::string_view body, unsigned flags) {
  const auto size = number(body.size(), version == 2 ? 3 : 4, version == 4 ? 7 : 8);
  return std::string(id) + size + (version == 2 ? "" : number(flags, 2)) + std::string(body);
}

std::string textFrame(int version, std::string_view id, std::string_view text) {
  return frame(version, id, std::string(1, '\0').append(text));
}

std::string pictureFrame(int version, std::string_view image, int kind) {
  using namespace std::string_literals;
  const auto format = version == 2 ? "JPG"s : "image/jpeg\0"s;
  const auto body = "\0"s + format + static_cast<char>(kind) + "\0"s + std::string(image);
  return frame(version, version == 2 ? "PIC" : "APIC", body);
}

std::string tag(int version, std::string_view frames, unsigned flags) {
  return "ID3" + number(static_cast<size_t>(version), 1) + number(0, 1) + number(flags, 1) +
         number(frames.size(), 4, 7) + std::string(frames);
}

std::string stuffed(std::string_view bytes) {
  std::string result;
  for (const char c : bytes) {
    result += c;
    if (c == '\xff') result += '\0';
  }
  return result;
}

std::string deflated(std::string_view bytes) {
  uLongf length = compressBound(bytes.size());
  std::string result(length, '\0');
  compress(reinterpret_cast<Bytef*>(result.data()), &length, reinterpret_cast<const Bytef*>(bytes.data()),
           bytes.size());
  result.resize(length);
  return result;
}

std::string id3v1(std::string_view title, std::string_view artist, std::string_view album,
                  std::string_view year, int track, int genre) {
  return "TAG" + filled(title, 30) + filled(artist, 30) + filled(album, 30) + filled(year, 4) +
         filled("", 29) + static_cast<char>(track) + static_cast<char>(genre);
}

std::string apeItem(std::string_view key, std::string_view value, unsigned flags) {
  return littleEndian(value.size()) + littleEndian(flags) + std::string(key) + '\0' + std::string(value);
}

std::string apeTag(std::string_view items, unsigned count) {
  const auto end = [&](unsigned flags) {
    return "APETAGEX" + littleEndian(2000) + littleEndian(items.size() + 32) + littleEndian(count) +
           littleEndian(flags) + std::string(8, '\0');
  };
  return end(0xa0000000) + std::string(items) + end(0x80000000);
}

std::string mpegFrames(int count) {
  std::string frames;
  for (int i = 0; i < count; ++i) frames += std::string("\xff\xfb\x90\x64", 4) + std::string(413, '\0');
  return frames;
}

}  // namespace quaverly::test
