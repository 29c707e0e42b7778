#include <cmath>
#include <cstdio>

#include "Host/Environment/HostWords.h"
#include "Host/Screens/NodeDescription.h"

namespace quaverly::screens {
namespace {

/// Hundredths are finer than any screen; fewer digits make shorter messages.
double rounded(double value) {
  return std::round(value * 100) / 100;
}

Json pointsOf(CGRect rect) {
  return {rounded(rect.x), rounded(rect.y), rounded(rect.width), rounded(rect.height)};
}

Json partsOf(const CGAffineTransform& transform) {
  const auto parts = decomposed(transform);
  return {parts.angle, parts.scaleX, parts.scaleY, parts.shiftX, parts.shiftY};
}

Json describeShape(const CAShapeLayer& layer) {
  Json shape{{"ellipse", pointsOf(layer.path()->ellipse)},
             {"width", layer.lineWidth()},
             {"start", layer.strokeStart()},
             {"end", layer.strokeEnd()}};
  if (layer.fillColor()) shape["fill"] = cssColor(*layer.fillColor());
  if (layer.strokeColor()) shape["stroke"] = cssColor(*layer.strokeColor());
  if (layer.opacity() != 1) shape["alpha"] = layer.opacity();
  return shape;
}

const char* propertyName(UIViewAnimation::Property property) {
  switch (property) {
    case UIViewAnimation::Property::alpha:
      return "alpha";
    case UIViewAnimation::Property::transform:
      return "transform";
    case UIViewAnimation::Property::center:
      return "center";
    case UIViewAnimation::Property::bounds:
      break;
  }
  return "bounds";
}

const char* easingName(UIViewAnimationCurve curve) {
  switch (curve) {
    case UIViewAnimationCurve::EaseInOut:
      return "ease-in-out";
    case UIViewAnimationCurve::EaseIn:
      return "ease-in";
    case UIViewAnimationCurve::EaseOut:
      return "ease-out";
    case UIViewAnimationCurve::Linear:
      break;
  }
  return "linear";
}

Json valueOf(UIViewAnimation::Property property, const UIViewAnimation::Value& value) {
  switch (property) {
    case UIViewAnimation::Property::alpha:
      return {value[0]};
    case UIViewAnimation::Property::transform:
      return partsOf({value[0], value[1], value[2], value[3], value[4], value[5]});
    case UIViewAnimation::Property::center:
      return {value[0], value[1]};
    case UIViewAnimation::Property::bounds:
      break;
  }
  return {value[2], value[3]};
}

double milliseconds(Clock::Duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

}  // namespace

std::string cssColor(const CGColor& color) {
  char text[64];
  const auto part = [](double value) { return rounded(value * 255); };
  if (color.alpha >= 1) {
    std::snprintf(text, sizeof text, "rgb(%g %g %g)", part(color.red), part(color.green), part(color.blue));
  } else {
    std::snprintf(text, sizeof text, "rgb(%g %g %g / %g)", part(color.red), part(color.green),
                  part(color.blue), color.alpha);
  }
  return text;
}

void describeLooks(const UIView& view, Json& node) {
  const CGRect bounds = view.bounds();
  const CGPoint center = view.center();
  node["place"] =
      pointsOf({center.x - bounds.width / 2, center.y - bounds.height / 2, bounds.width, bounds.height});
  if (!view.transform().isIdentity()) node["transform"] = partsOf(view.transform());
  if (view.alpha() != 1) node["alpha"] = view.alpha();
  if (view.isHidden()) node["hidden"] = true;
  if (!view.isUserInteractionEnabled()) node["passive"] = true;
  if (view.clipsToBounds()) node["clip"] = true;
  const CALayer& layer = *view.layer();
  if (layer.cornerRadius() != 0) node["corner"] = layer.cornerRadius();
  if (layer.backgroundColor() && layer.backgroundColor()->alpha > 0)
    node["background"] = cssColor(*layer.backgroundColor());
  if (layer.borderWidth() > 0) node["border"] = {layer.borderWidth(), cssColor(layer.borderColor())};
  for (const auto& sublayer : layer.sublayers()) {
    const auto* const shape = dynamic_cast<const CAShapeLayer*>(sublayer.get());
    if (shape && shape->path()) node["shapes"].push_back(describeShape(*shape));
  }
  if (view.accessibilityLabel()) node["name"] = host::inUsersLanguage(*view.accessibilityLabel());
  if (view.accessibilityTraits() & UIAccessibilityTraitUpdatesFrequently) node["role"] = "status";
}

void describeAnimations(const UIView& view, Json& node) {
  for (const auto& animation : view.animations()) {
    node["animations"].push_back({{"id", animation.identity},
                                  {"property", propertyName(animation.property)},
                                  {"from", valueOf(animation.property, animation.from)},
                                  {"to", valueOf(animation.property, animation.to)},
                                  {"begin", milliseconds(animation.begin.time_since_epoch())},
                                  {"delay", milliseconds(animation.delay)},
                                  {"duration", milliseconds(animation.duration)},
                                  {"easing", easingName(animation.curve())},
                                  {"repeat", animation.repeats()},
                                  {"reverse", animation.autoreverses()}});
  }
}

}  // namespace quaverly::screens
