#include "Platform/CoreImage/BlurLoops.h"

#include <algorithm>
#include <cstring>

// BLUR_FOR_EACH_PROCESSOR comes from the build: the function is compiled once for each kind of processor that
// is worth it, and the one for this machine's is called. Vectors are the compiler's own and may be wider than
// the processor's.

namespace quaverly::blurloops {
namespace {

using Floats [[gnu::vector_size(32), gnu::aligned(4), gnu::may_alias]] = float;
using Pixel [[gnu::vector_size(16), gnu::aligned(4), gnu::may_alias]] = float;
using Ints [[gnu::vector_size(32)]] = int32_t;
/// Eight pixels, a byte for each channel.
using Bytes [[gnu::vector_size(32), gnu::aligned(1), gnu::may_alias]] = uint32_t;
/// Two channels each of eight pixels.
using Pairs [[gnu::vector_size(32)]] = uint32_t;

constexpr size_t lanes = 8;
constexpr size_t bytesOfLanes = 32;
constexpr uint32_t everyOther = 0x00ff00ff;

/// The same as `addLines` for lines that are too short for a vector.
void addShortLines(const uint8_t* const* lines, const float* weights, size_t radius, size_t count,
                   float* sums) {
  for (size_t i = 0; i < count; ++i) {
    sums[i] = weights[0] * static_cast<float>(lines[radius][i]);
    for (size_t j = 1; j <= radius; ++j)
      sums[i] += weights[j] * static_cast<float>(lines[radius - j][i] + lines[radius + j][i]);
  }
}

}  // namespace

BLUR_FOR_EACH_PROCESSOR
void addLines(const uint8_t* const* lines, const float* weights, size_t radius, size_t count, float* sums) {
  if (count < bytesOfLanes) return addShortLines(lines, weights, radius, count, sums);
  for (size_t start = 0; start < count; start += bytesOfLanes) {
    const size_t at = std::min(start, count - bytesOfLanes);  // the last ones overlap those before them
    const Bytes middle = *reinterpret_cast<const Bytes*>(lines[radius] + at);
    Floats red = weights[0] * __builtin_convertvector(reinterpret_cast<Ints>(middle & 255), Floats);
    Floats green = weights[0] * __builtin_convertvector(reinterpret_cast<Ints>(middle >> 8 & 255), Floats);
    Floats blue = weights[0] * __builtin_convertvector(reinterpret_cast<Ints>(middle >> 16 & 255), Floats);
    Floats alpha = weights[0] * __builtin_convertvector(reinterpret_cast<Ints>(middle >> 24), Floats);
    for (size_t j = 1; j <= radius; ++j) {
      const Bytes before = *reinterpret_cast<const Bytes*>(lines[radius - j] + at);
      const Bytes behind = *reinterpret_cast<const Bytes*>(lines[radius + j] + at);
      // Two bytes add up within sixteen bits, so that two channels are added at once.
      const Pairs redBlue = (before & everyOther) + (behind & everyOther);
      const Pairs greenAlpha = (before >> 8 & everyOther) + (behind >> 8 & everyOther);
      red += weights[j] * __builtin_convertvector(reinterpret_cast<Ints>(redBlue & 0xffff), Floats);
      green += weights[j] * __builtin_convertvector(reinterpret_cast<Ints>(greenAlpha & 0xffff), Floats);
      blue += weights[j] * __builtin_convertvector(reinterpret_cast<Ints>(redBlue >> 16), Floats);
      alpha += weights[j] * __builtin_convertvector(reinterpret_cast<Ints>(greenAlpha >> 16), Floats);
    }
    for (size_t i = 0; i < lanes; ++i) {
      float* const pixel = sums + at + i * 4;
      pixel[0] = red[i];
      pixel[1] = green[i];
      pixel[2] = blue[i];
      pixel[3] = alpha[i];
    }
  }
}

BLUR_FOR_EACH_PROCESSOR
void addPixels(const float* pixels, const float* weights, size_t length, size_t step, size_t count,
               float* sums) {
  for (size_t place = 0; place < count; ++place) {
    const float* from = pixels + place * step;
    Floats even{};
    Floats odd{};
    for (size_t at = 0; at < length; at += 2 * lanes) {
      even += *reinterpret_cast<const Floats*>(from + at) * *reinterpret_cast<const Floats*>(weights + at);
      odd += *reinterpret_cast<const Floats*>(from + at + lanes) *
             *reinterpret_cast<const Floats*>(weights + at + lanes);
    }
    const Floats both = even + odd;
    for (size_t c = 0; c < 4; ++c) sums[place * 4 + c] = both[c] + both[c + 4];
  }
}

BLUR_FOR_EACH_PROCESSOR
void spreadPixels(const float* coarse, const float* weights, size_t taps, size_t phases, size_t count,
                  float* pixels) {
  for (size_t run = 0; run < count; ++run) {
    for (size_t phase = 0; phase < phases; ++phase) {
      Pixel sum{};
      for (size_t tap = 0; tap < taps; ++tap)
        sum += *reinterpret_cast<const Pixel*>(coarse + (run + tap) * 4) * weights[phase * taps + tap];
      *reinterpret_cast<Pixel*>(pixels + (run * phases + phase) * 4) = sum;
    }
  }
}

BLUR_FOR_EACH_PROCESSOR
void mixLines(const float* const* lines, const float* weights, size_t taps, size_t count, uint8_t* bytes) {
  constexpr size_t vectors = block / lanes;
  for (size_t start = 0; start < count; start += block) {
    Floats sum[vectors];
    for (auto& lane : sum) lane = Floats{} + 0.5F;
    for (size_t tap = 0; tap < taps; ++tap) {
      const float* line = lines[tap] + start;
#pragma GCC unroll 8
      for (size_t v = 0; v < vectors; ++v)
        sum[v] += weights[tap] * *reinterpret_cast<const Floats*>(line + v * lanes);
    }
    int32_t whole[block];
#pragma GCC unroll 8
    for (size_t v = 0; v < vectors; ++v) {
      const Ints rounded = __builtin_convertvector(sum[v], Ints);
      std::memcpy(whole + v * lanes, &rounded, sizeof rounded);
    }
    uint8_t narrow[block];
    for (size_t i = 0; i < block; ++i) narrow[i] = static_cast<uint8_t>(whole[i]);
    std::memcpy(bytes + start, narrow, std::min(block, count - start));
  }
}

}  // namespace quaverly::blurloops
