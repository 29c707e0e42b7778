#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "Platform/Device/Clock.h"
#include "Platform/QuartzCore/CGAffineTransform.h"

namespace quaverly {

/// Bits of an animation's options. The curve is a number in bits 16 to 19.
enum UIViewAnimationOptions : unsigned {
  UIViewAnimationOptionAllowUserInteraction = 1U << 1,
  UIViewAnimationOptionBeginFromCurrentState = 1U << 2,
  UIViewAnimationOptionRepeat = 1U << 3,
  UIViewAnimationOptionAutoreverse = 1U << 4,
  UIViewAnimationOptionCurveEaseIn = 1U << 16,
  UIViewAnimationOptionCurveEaseOut = 2U << 16,
  UIViewAnimationOptionCurveLinear = 3U << 16,
};

enum class UIViewAnimationCurve { EaseInOut = 0, EaseIn = 1, EaseOut = 2, Linear = 3 };

class UIViewAnimationGroup;

/// One property of a view on its way from one value to another. The view itself has the last value from the
/// start; this tells what is seen meanwhile.
struct UIViewAnimation {
  enum class Property { alpha, transform, center, bounds };
  /// Alpha in the first place; a transform's a, b, c, d, tx, ty; a centre's x, y; bounds' x, y, width,
  /// height.
  using Value = std::array<double, 6>;

  uint64_t identity = 0;  ///< no other animation of this process has it
  Property property = Property::alpha;
  Value from{};
  Value to{};
  Clock::Instant begin{};  ///< when it was made; the delay comes after it
  Clock::Duration delay{};
  Clock::Duration duration{};
  unsigned options = 0;
  std::shared_ptr<UIViewAnimationGroup> group{};

  UIViewAnimationCurve curve() const { return UIViewAnimationCurve{static_cast<int>((options >> 16) & 15)}; }
  bool repeats() const { return (options & UIViewAnimationOptionRepeat) != 0; }
  bool autoreverses() const { return (options & UIViewAnimationOptionAutoreverse) != 0; }

  /// What is seen at `now`.
  Value valueAt(Clock::Instant now) const;
};

/// A transform as a turn between -π and π after a scaling, and a shift. Shearing is not told.
struct UITransformParts {
  double angle = 0;
  double scaleX = 1;
  double scaleY = 1;
  double shiftX = 0;
  double shiftY = 0;
};
UITransformParts decomposed(const CGAffineTransform& transform);
CGAffineTransform composed(const UITransformParts& parts);

}  // namespace quaverly
