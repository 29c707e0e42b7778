#include <turbojpeg.h>
#include <xxhash.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <mutex>

#include "Platform/UIKit/ImageCoding.h"

namespace quaverly {
namespace {

struct Destroy {
  void operator()(void* handle) const { tjDestroy(handle); }
};
struct Free {
  void operator()(uint8_t* buffer) const { tjFree(buffer); }
};

/// A compressor and a buffer that are used again and again, one of them for each thread.
class Compressor {
 public:
  static Compressor& ofThisThread() {
    thread_local Compressor compressor;
    return compressor;
  }

  /// Takes no notice of alpha.
  std::optional<NSData> encode(const CGImage& image, const uint8_t* pixels, int quality) {
    const auto width = static_cast<int>(image.width());
    const auto height = static_cast<int>(image.height());
    reserve(tjBufSize(width, height, TJSAMP_444));
    unsigned char* buffer = _buffer.get();
    unsigned long length = _capacity;
    if (!buffer || tjCompress2(_handle.get(), pixels, width, 0, height, TJPF_RGBX, &buffer, &length,
                               TJSAMP_444, quality, TJFLAG_NOREALLOC | TJFLAG_ACCURATEDCT) != 0)
      return std::nullopt;
    NSData encoded(std::string_view(reinterpret_cast<const char*>(buffer), length));
    if (_capacity > mostKept) reserve(0);
    return encoded;
  }

 private:
  static constexpr unsigned long mostKept = 32UL << 20;

  /// Makes room, or gives it up.
  void reserve(unsigned long capacity) {
    if (capacity > 0 && capacity <= _capacity) return;
    _buffer.reset(capacity > 0 ? tjAlloc(static_cast<int>(capacity)) : nullptr);
    _capacity = _buffer ? capacity : 0;
  }

  std::unique_ptr<void, Destroy> _handle{tjInitCompress()};
  std::unique_ptr<uint8_t, Free> _buffer;
  unsigned long _capacity = 0;
};

/// The last few encoded images by the hash of the file that they were made from.
class Memory {
 public:
  struct Key {
    XXH128_hash_t file;
    int quality;
    bool operator==(const Key& other) const {
      return XXH128_isEqual(file, other.file) && quality == other.quality;
    }
  };

  static Memory& shared() {
    static Memory memory;
    return memory;
  }

  std::optional<NSData> find(const Key& key) const {
    std::lock_guard lock(_mutex);
    const auto found = std::ranges::find(_entries, key, &Entry::key);
    return found == _entries.end() ? std::nullopt : std::optional(found->encoded);
  }

  void add(const Key& key, const NSData& encoded) {
    if (encoded.length() > longest) return;
    std::lock_guard lock(_mutex);
    _entries.push_front({key, encoded});
    if (_entries.size() > most) _entries.pop_back();
  }

 private:
  static constexpr size_t most = 4;
  static constexpr uint64_t longest = uint64_t{8} << 20;
  struct Entry {
    Key key;
    NSData encoded;
  };

  mutable std::mutex _mutex;
  std::deque<Entry> _entries;
};

bool isOpaque(std::span<const uint8_t> pixels) {
  uint8_t alpha = 255;
  for (size_t i = 3; i < pixels.size(); i += CGImage::bytesPerPixel) alpha &= pixels[i];
  return alpha == 255;
}

/// Colours are multiplied by alpha already; white gives the rest.
CGImage::Pixels laidOnWhite(std::span<const uint8_t> pixels) {
  auto laid = std::make_unique_for_overwrite<uint8_t[]>(pixels.size());
  for (size_t i = 0; i < pixels.size(); ++i) laid[i] = static_cast<uint8_t>(pixels[i] + 255 - pixels[i | 3]);
  return laid;
}

std::optional<NSData> encode(const UIImage& image, int quality) {
  const auto bitmap = image.bitmap();
  if (!bitmap) return std::nullopt;
  const auto pixels = bitmap->bytes();
  if (isOpaque(pixels)) return Compressor::ofThisThread().encode(*bitmap, pixels.data(), quality);
  return Compressor::ofThisThread().encode(*bitmap, laidOnWhite(pixels).get(), quality);
}

}  // namespace

std::optional<NSData> UIImageJPEGRepresentation(const UIImage& image, double quality) {
  const int percent = std::clamp(static_cast<int>(std::lround(quality * 100)), 1, 100);
  if (!image.file()) return encode(image, percent);
  const auto file = imageBytes(image.file()->data);
  const Memory::Key key{XXH3_128bits(file.data(), file.size()), percent};
  if (auto known = Memory::shared().find(key)) return known;
  auto encoded = encode(image, percent);
  if (encoded) Memory::shared().add(key, *encoded);
  return encoded;
}

}  // namespace quaverly
