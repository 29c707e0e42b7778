#include "Platform/CoreImage/BlurPlan.h"

#include <cmath>

namespace quaverly {
namespace {

/// How far a Gaussian is followed, in its own sigmas. Behind that is less than a tenth of a level.
constexpr double reach = 3.6;

/// The narrow Gaussian in steps: wide enough to leave no trace of the grid, and done with six coarse pixels.
constexpr double sigmaPerStep = 0.75;
constexpr size_t tapsBetween = 6;

double gauss(double x, double sigma) {
  return sigma == 0 ? (x == 0 ? 1 : 0) : std::exp(-x * x / (2 * sigma * sigma));
}

/// Makes the weights add up to one.
void normalize(const std::vector<double>& weights, double sum, std::vector<float>& into) {
  for (const double weight : weights) into.push_back(static_cast<float>(weight / sum));
}

}  // namespace

BlurPlan::BlurPlan(double sigma) {
  if (sigma >= 3) {
    step = static_cast<size_t>(sigma * 2 / 3);
    taps = tapsBetween;
  }
  const double narrowSigma = taps == 1 ? 0 : sigmaPerStep * static_cast<double>(step);
  setWide(std::sqrt(sigma * sigma - narrowSigma * narrowSigma));
  for (size_t phase = 0; phase < step; ++phase) addPhase(phase, narrowSigma);
}

void BlurPlan::setWide(double sigma) {
  radius = static_cast<size_t>(std::ceil(reach * sigma));
  std::vector<double> weights;
  double sum = -1;
  for (size_t x = 0; x <= radius; ++x) {
    weights.push_back(gauss(static_cast<double>(x), sigma));
    sum += 2 * weights.back();
  }
  normalize(weights, sum, wide);
}

void BlurPlan::addPhase(size_t phase, double sigma) {
  std::vector<double> weights;
  double sum = 0;
  for (size_t tap = 0; tap < taps; ++tap) {
    const auto coarse = static_cast<double>(tap * step);
    weights.push_back(gauss(static_cast<double>(phase + lead() * step) - coarse, sigma));
    sum += weights.back();
  }
  normalize(weights, sum, narrow);
}

BlurGrid::BlurGrid(const BlurPlan& plan, int64_t start, int64_t length)
    : first(start - static_cast<int64_t>(plan.lead() * plan.step)),
      runs((static_cast<size_t>(length) + plan.step - 1) / plan.step),
      count(runs + plan.taps - 1) {}

}  // namespace quaverly
