#pragma once

#include <optional>
#include <vector>

#include "Platform/Foundation/NSObject.h"
#include "Platform/QuartzCore/CATransaction.h"
#include "Platform/QuartzCore/CGColor.h"
#include "Platform/QuartzCore/CGGeometry.h"

namespace quaverly {

/// What a view looks like apart from its contents: background, edge and shapes on top. Main thread only.
class CALayer : public NSObject {
 public:
  double cornerRadius() const { return _cornerRadius; }
  void setCornerRadius(double radius) { set(_cornerRadius, radius); }

  /// Whether what lies outside is cut off, sublayers and rounded corners included.
  bool masksToBounds() const { return _masksToBounds; }
  void setMasksToBounds(bool masks) { set(_masksToBounds, masks); }

  double borderWidth() const { return _borderWidth; }
  void setBorderWidth(double width) { set(_borderWidth, width); }
  const CGColor& borderColor() const { return _borderColor; }
  void setBorderColor(CGColor color) { set(_borderColor, color); }

  const std::optional<CGColor>& backgroundColor() const { return _backgroundColor; }
  void setBackgroundColor(std::optional<CGColor> color) { set(_backgroundColor, color); }

  /// From 0, invisible, to 1.
  double opacity() const { return _opacity; }
  void setOpacity(double opacity) { set(_opacity, opacity); }

  /// Back to front; a layer owns its sublayers.
  const std::vector<Ref<CALayer>>& sublayers() const { return _sublayers; }
  void addSublayer(Ref<CALayer> layer) {
    _sublayers.push_back(std::move(layer));
    CATransaction::noteChange();
  }

 protected:
  template <class T>
  static void set(T& field, T value) {
    if (field == value) return;
    field = std::move(value);
    CATransaction::noteChange();
  }

 private:
  double _cornerRadius = 0;
  double _borderWidth = 0;
  double _opacity = 1;
  bool _masksToBounds = false;
  CGColor _borderColor{0, 0, 0, 1};
  std::optional<CGColor> _backgroundColor;
  std::vector<Ref<CALayer>> _sublayers;
};

}  // namespace quaverly
