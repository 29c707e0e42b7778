#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quaverly {

/// How a blur is divided between a wide Gaussian at every few pixels and a narrow one back to all of them,
/// and their weights.
struct BlurPlan {
  explicit BlurPlan(double sigma);

  /// How many coarse pixels there are before the first that a pixel lies behind.
  size_t lead() const { return (taps - 1) / 2; }

  size_t step = 1;
  size_t taps = 1;
  size_t radius = 0;
  std::vector<float> wide;    ///< the middle and one side
  std::vector<float> narrow;  ///< `taps` for each phase of a step

 private:
  void setWide(double sigma);
  void addPhase(size_t phase, double sigma);
};

/// Where the coarse pixels lie along one side of a region of the plane.
struct BlurGrid {
  BlurGrid(const BlurPlan& plan, int64_t start, int64_t length);

  int64_t first;  ///< on the plane
  size_t runs;    ///< steps that cover the region
  size_t count;   ///< coarse pixels that are needed for them
};

}  // namespace quaverly
