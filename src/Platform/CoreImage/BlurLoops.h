#pragma once

#include <cstddef>
#include <cstdint>

// The loops in which a blur spends its time, in a file that is compiled for speed and for several kinds of
// processor. They know arrays and nothing else: all pixels are four channels side by side.
namespace quaverly::blurloops {

/// How many elements the loops take at a time.
inline constexpr size_t block = 64;

/// Adds 2 * `radius` + 1 lines of `count` bytes, of which the middle one has the first weight and those
/// beside it the following ones. Needs at least a block of bytes in each line.
void addLines(const uint8_t* const* lines, const float* weights, size_t radius, size_t count, float* sums);

/// For each of `count` places: adds the pixels from there on, each channel with its own weight. `length`
/// weights, a multiple of 16; places are `step` elements apart.
void addPixels(const float* pixels, const float* weights, size_t length, size_t step, size_t count,
               float* sums);

/// Makes `phases` pixels out of each run of `taps` coarse ones, of which there are `count`: `weights` are
/// those of the first new pixel, then those of the second, and so on.
void spreadPixels(const float* coarse, const float* weights, size_t taps, size_t phases, size_t count,
                  float* pixels);

/// Adds `taps` lines of `count` elements with a weight each and rounds to bytes. The lines, not the bytes,
/// have room for a multiple of a block.
void mixLines(const float* const* lines, const float* weights, size_t taps, size_t count, uint8_t* bytes);

}  // namespace quaverly::blurloops
