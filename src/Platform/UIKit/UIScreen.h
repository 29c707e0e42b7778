#pragma once

#include "Platform/QuartzCore/CGGeometry.h"

namespace quaverly {

/// The device's screen, turned as the person holds it. Main thread only.
class UIScreen {
 public:
  static UIScreen& mainScreen();

  /// In points, from (0, 0).
  CGRect bounds() const { return {0, 0, _size.width, _size.height}; }
  /// For `UIApplication::screenChanged`.
  void setSize(CGSize size) { _size = size; }

 private:
  CGSize _size{375, 667};
};

}  // namespace quaverly
