#pragma once

namespace quaverly {

/// Which parts of a view's place give way when its superview changes its size; bits.
enum UIViewAutoresizing : unsigned {
  UIViewAutoresizingNone = 0,
  UIViewAutoresizingFlexibleLeftMargin = 1,
  UIViewAutoresizingFlexibleWidth = 2,
  UIViewAutoresizingFlexibleRightMargin = 4,
  UIViewAutoresizingFlexibleTopMargin = 8,
  UIViewAutoresizingFlexibleHeight = 16,
  UIViewAutoresizingFlexibleBottomMargin = 32,
};

/// How contents fill a view of another shape.
enum class UIViewContentMode { ScaleToFill = 0, ScaleAspectFit = 1, ScaleAspectFill = 2, Center = 4 };

enum class NSTextAlignment { Left = 0, Center = 1, Right = 2 };

enum class NSLineBreakMode { ByWordWrapping = 0, ByTruncatingTail = 4 };

enum class UIKeyboardType { Default = 0, NumberPad = 4 };

enum UIAccessibilityTraits : unsigned {
  UIAccessibilityTraitNone = 0,
  /// Says something new now and then, which is to be told.
  UIAccessibilityTraitUpdatesFrequently = 1U << 9,
};

enum class UIInterfaceOrientation {
  Portrait = 1,
  PortraitUpsideDown = 2,
  LandscapeRight = 3,
  LandscapeLeft = 4
};

/// Upright, or upside down.
constexpr bool UIInterfaceOrientationIsPortrait(UIInterfaceOrientation orientation) {
  return orientation == UIInterfaceOrientation::Portrait ||
         orientation == UIInterfaceOrientation::PortraitUpsideDown;
}

}  // namespace quaverly
