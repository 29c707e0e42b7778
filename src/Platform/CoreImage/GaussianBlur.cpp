#include "Platform/CoreImage/GaussianBlur.h"

#include <algorithm>
#include <vector>

#include "Platform/CoreImage/BlurLoops.h"
#include "Platform/CoreImage/BlurPlan.h"

// A wide Gaussian leaves nothing that changes within a few pixels. So it is done in two: most of it only at
// every few rows and columns, and from there back to all pixels with a second, narrow one, whose variance is
// what the first lacked. Rows are made as they are needed, and a few are kept.

namespace quaverly {
namespace {

constexpr size_t channels = CGImage::bytesPerPixel;

size_t roundedUp(size_t number, size_t to) {
  return (number + to - 1) / to * to;
}

/// Makes one coarse row of the plane, blurred, as wide as the region and at full width again.
class RowMaker {
 public:
  RowMaker(const BlurPlan& plan, const CGImage& picture, const PixelRect& region)
      : _plan(plan),
        _picture(picture),
        _columns(plan, region.x, region.width),
        _start(_columns.first - static_cast<int64_t>(plan.radius)),
        _nothing(picture.width() * channels),
        _lines(2 * plan.radius + 1),
        _coarse(_columns.count * channels) {
    const size_t kernel = roundedUp((2 * plan.radius + 1) * channels, lanes);
    _weights.resize(kernel);
    for (size_t i = 0; i < (2 * plan.radius + 1) * channels; ++i) {
      const size_t x = i / channels;
      _weights[i] = plan.wide[x < plan.radius ? plan.radius - x : x - plan.radius];
    }
    _row.resize((_columns.count - 1) * plan.step * channels + kernel);
  }

  size_t rowLength() const { return roundedUp(_columns.runs * _plan.step * channels, blurloops::block); }

  /// The row at `y` on the plane.
  void make(int64_t y, float* into) {
    if (!addRowsAround(y)) {
      std::fill_n(into, rowLength(), 0.0f);
      return;
    }
    blurloops::addPixels(_row.data(), _weights.data(), _weights.size(), _plan.step * channels, _columns.count,
                         _coarse.data());
    blurloops::spreadPixels(_coarse.data(), _plan.narrow.data(), _plan.taps, _plan.step, _columns.runs, into);
  }

 private:
  static constexpr size_t lanes = 16;

  /// Blurs downwards, the columns that are needed; false when all rows around `y` lie outside the picture.
  bool addRowsAround(int64_t y) {
    const auto radius = static_cast<int64_t>(_plan.radius);
    const int64_t height = _picture.height();
    const auto end = _start + static_cast<int64_t>(_row.size() / channels);
    const int64_t left = std::max<int64_t>(_start, 0);
    const int64_t right = std::min<int64_t>(end, _picture.width());
    if (y + radius < 0 || y - radius >= height || left >= right) return false;
    for (int64_t j = -radius; j <= radius; ++j) {
      const bool inside = y + j >= 0 && y + j < height;
      const auto* line = inside ? _picture.row(static_cast<size_t>(y + j)).data() : _nothing.data();
      _lines[static_cast<size_t>(j + radius)] = line + static_cast<size_t>(left) * channels;
    }
    blurloops::addLines(_lines.data(), _plan.wide.data(), _plan.radius,
                        static_cast<size_t>(right - left) * channels,
                        _row.data() + static_cast<size_t>(left - _start) * channels);
    return true;
  }

  const BlurPlan& _plan;
  const CGImage& _picture;
  BlurGrid _columns;
  int64_t _start;  // of `_row` on the plane
  std::vector<uint8_t> _nothing;
  std::vector<const uint8_t*> _lines;
  std::vector<float> _weights;  // of `_plan.wide`, on both sides and for each channel
  std::vector<float> _row;      // zero outside the picture
  std::vector<float> _coarse;
};

/// The coarse rows around the one that is being written, made once each, in order.
class RecentRows {
 public:
  RecentRows(RowMaker& maker, const BlurGrid& rows, const BlurPlan& plan)
      : _maker(maker), _first(rows.first), _plan(plan), _kept(plan.taps * maker.rowLength()) {}

  /// The rows that lie around a run; runs come in order.
  std::vector<const float*> around(size_t run) {
    while (_made < run + _plan.taps) {
      _maker.make(_first + static_cast<int64_t>(_made * _plan.step), place(_made));
      ++_made;
    }
    std::vector<const float*> rows;
    for (size_t tap = 0; tap < _plan.taps; ++tap) rows.push_back(place(run + tap));
    return rows;
  }

 private:
  float* place(size_t row) { return _kept.data() + row % _plan.taps * _maker.rowLength(); }

  RowMaker& _maker;
  int64_t _first;
  const BlurPlan& _plan;
  std::vector<float> _kept;
  size_t _made = 0;
};

/// Writes the `count` rows that lie behind the same coarse one, piece by piece, so that what they share stays
/// near.
void writeRun(std::vector<const float*> rows, const BlurPlan& plan, size_t count, size_t length,
              uint8_t* into) {
  constexpr size_t piece = 8 * blurloops::block;
  for (size_t at = 0; at < length; at += piece) {
    const size_t here = std::min(piece, length - at);
    for (size_t phase = 0; phase < count; ++phase)
      blurloops::mixLines(rows.data(), plan.narrow.data() + phase * plan.taps, plan.taps, here,
                          into + phase * length + at);
    for (auto& row : rows) row += piece;
  }
}

}  // namespace

CGImage::Pixels gaussianBlur(const CGImage& picture, double sigma, const PixelRect& region) {
  const auto length = static_cast<size_t>(region.width) * channels;
  const auto height = static_cast<size_t>(region.height);
  auto pixels = std::make_unique_for_overwrite<uint8_t[]>(length * height);
  const BlurPlan plan(sigma);
  const BlurGrid rows(plan, region.y, region.height);
  RowMaker maker(plan, picture, region);
  RecentRows recent(maker, rows, plan);
  for (size_t run = 0; run < rows.runs; ++run) {
    const size_t y = run * plan.step;
    writeRun(recent.around(run), plan, std::min(plan.step, height - y), length, pixels.get() + y * length);
  }
  return pixels;
}

}  // namespace quaverly
