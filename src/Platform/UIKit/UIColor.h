#pragma once

#include "Platform/QuartzCore/CGColor.h"

namespace quaverly {

/// The colours of views, and the ones that have names.
struct UIColor : CGColor {
  static constexpr UIColor colorWithRedGreenBlueAlpha(double red, double green, double blue, double alpha) {
    return {{red, green, blue, alpha}};
  }
  static constexpr UIColor colorWithWhiteAlpha(double white, double alpha) {
    return {{white, white, white, alpha}};
  }
  static constexpr UIColor clearColor() { return colorWithWhiteAlpha(0, 0); }
  static constexpr UIColor blackColor() { return colorWithWhiteAlpha(0, 1); }
  static constexpr UIColor grayColor() { return colorWithWhiteAlpha(0.5, 1); }
  static constexpr UIColor whiteColor() { return colorWithWhiteAlpha(1, 1); }
  /// What can be tapped, where nobody chose a tint.
  static constexpr UIColor systemBlueColor() { return colorWithRedGreenBlueAlpha(0, 122 / 255.0, 1, 1); }
};

}  // namespace quaverly
