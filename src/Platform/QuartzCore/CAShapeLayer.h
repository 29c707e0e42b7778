#pragma once

#include "Platform/QuartzCore/CALayer.h"
#include "Platform/QuartzCore/CGPath.h"

namespace quaverly {

/// A path, filled and stroked in its owner's coordinates. Main thread only.
class CAShapeLayer : public CALayer {
 public:
  const std::optional<CGPath>& path() const { return _path; }
  void setPath(std::optional<CGPath> path) { set(_path, path); }

  const std::optional<CGColor>& fillColor() const { return _fillColor; }
  void setFillColor(std::optional<CGColor> color) { set(_fillColor, color); }
  const std::optional<CGColor>& strokeColor() const { return _strokeColor; }
  void setStrokeColor(std::optional<CGColor> color) { set(_strokeColor, color); }

  /// Where the stroke begins and ends, as parts of the path's length from 0 to 1. An ellipse begins at its
  /// rightmost point and runs clockwise.
  double strokeStart() const { return _strokeStart; }
  void setStrokeStart(double start) { set(_strokeStart, start); }
  double strokeEnd() const { return _strokeEnd; }
  void setStrokeEnd(double end) { set(_strokeEnd, end); }

  double lineWidth() const { return _lineWidth; }
  void setLineWidth(double width) { set(_lineWidth, width); }

 private:
  std::optional<CGPath> _path;
  std::optional<CGColor> _fillColor = CGColor{0, 0, 0, 1};
  std::optional<CGColor> _strokeColor;
  double _strokeStart = 0;
  double _strokeEnd = 1;
  double _lineWidth = 1;
};

}  // namespace quaverly
