#include "Platform/UIKit/UIViewAnimation.h"

#include <algorithm>
#include <cmath>

#include "Platform/UIKit/UIViewAnimationGroup.h"

namespace quaverly {
namespace {

using Property = UIViewAnimation::Property;
using Value = UIViewAnimation::Value;

struct CurvePoints {
  double x1, y1, x2, y2;
};

/// The control points of the timing functions, those of CSS.
CurvePoints controlPoints(UIViewAnimationCurve curve) {
  switch (curve) {
    case UIViewAnimationCurve::EaseInOut:
      return {0.42, 0, 0.58, 1};
    case UIViewAnimationCurve::EaseIn:
      return {0.42, 0, 1, 1};
    case UIViewAnimationCurve::EaseOut:
      return {0, 0, 0.58, 1};
    case UIViewAnimationCurve::Linear:
      break;
  }
  return {0, 0, 1, 1};
}

double bezier(double first, double second, double t) {
  const double rest = 1 - t;
  return 3 * rest * rest * t * first + 3 * rest * t * t * second + t * t * t;
}

/// How far a change has come after a part of its time.
double eased(UIViewAnimationCurve curve, double time) {
  const auto points = controlPoints(curve);
  double low = 0;
  double high = 1;
  for (int step = 0; step < 40; ++step) {
    const double middle = (low + high) / 2;
    (bezier(points.x1, points.x2, middle) < time ? low : high) = middle;
  }
  return bezier(points.y1, points.y2, (low + high) / 2);
}

double between(double from, double to, double part) {
  return from + (to - from) * part;
}

CGAffineTransform transformOf(const Value& value) {
  return {value[0], value[1], value[2], value[3], value[4], value[5]};
}

Value transformBetween(const Value& from, const Value& to, double part) {
  const auto start = decomposed(transformOf(from));
  const auto end = decomposed(transformOf(to));
  const auto now = composed({between(start.angle, end.angle, part), between(start.scaleX, end.scaleX, part),
                             between(start.scaleY, end.scaleY, part), between(start.shiftX, end.shiftX, part),
                             between(start.shiftY, end.shiftY, part)});
  return {now.a, now.b, now.c, now.d, now.tx, now.ty};
}

/// How much of the way has passed: back and forth where the animation returns, again and again where it
/// repeats.
double partOfWay(const UIViewAnimation& animation, Clock::Instant now) {
  const auto running = std::chrono::duration<double>(now - animation.begin - animation.delay).count();
  const double duration = std::chrono::duration<double>(animation.duration).count();
  if (running <= 0) return 0;
  double rounds = duration > 0 ? running / duration : 1;
  if (!animation.repeats()) return std::min(rounds, 1.0);
  const bool back = animation.autoreverses() && std::fmod(std::floor(rounds), 2) == 1;
  rounds -= std::floor(rounds);
  return back ? 1 - rounds : rounds;
}

}  // namespace

UITransformParts decomposed(const CGAffineTransform& transform) {
  const double scaleX = std::hypot(transform.a, transform.b);
  const double determinant = transform.a * transform.d - transform.b * transform.c;
  const double scaleY = scaleX > 0 ? determinant / scaleX : std::hypot(transform.c, transform.d);
  const double angle = scaleX > 0 ? std::atan2(transform.b, transform.a) : 0;
  return {angle, scaleX, scaleY, transform.tx, transform.ty};
}

CGAffineTransform composed(const UITransformParts& parts) {
  const double cosine = std::cos(parts.angle);
  const double sine = std::sin(parts.angle);
  return {parts.scaleX * cosine, parts.scaleX * sine, -parts.scaleY * sine,
          parts.scaleY * cosine, parts.shiftX,        parts.shiftY};
}

UIViewAnimation::Value UIViewAnimation::valueAt(Clock::Instant now) const {
  const double part = eased(curve(), partOfWay(*this, now));
  if (property == Property::transform) return transformBetween(from, to, part);
  Value value{};
  for (size_t i = 0; i < value.size(); ++i) value[i] = between(from[i], to[i], part);
  return value;
}

void UIView::animateWithDurationDelayOptionsAnimationsCompletion(double duration, double delay,
                                                                 unsigned options,
                                                                 const std::function<void()>& animations,
                                                                 Completion completion) {
  std::make_shared<UIViewAnimationGroup>(duration, delay, options, std::move(completion))->run(animations);
}

UIViewAnimation::Value UIView::valueOf(Property property) const {
  switch (property) {
    case Property::alpha:
      return {alpha()};
    case Property::transform:
      return {_transform.a, _transform.b, _transform.c, _transform.d, _transform.tx, _transform.ty};
    case Property::center:
      return {_center.x, _center.y};
    case Property::bounds:
      break;
  }
  return {_bounds.x, _bounds.y, _bounds.width, _bounds.height};
}

void UIView::animate(Property property, const UIViewAnimation::Value& from) {
  if (auto* const group = UIViewAnimationGroup::current()) group->add(*this, property, from);
}

void UIView::endAnimations(Property property) {
  const Ref<UIView> kept(this);
  const auto ended = [&](const UIViewAnimation& animation) { return animation.property == property; };
  std::vector<UIViewAnimation> gone;
  std::ranges::copy_if(_animations, std::back_inserter(gone), ended);
  if (std::erase_if(_animations, ended) > 0) CATransaction::noteChange();
  for (const auto& animation : gone) animation.group->lose(animation.identity);
}

void UIView::removeAnimation(uint64_t identity) {
  std::erase_if(_animations,
                [&](const UIViewAnimation& animation) { return animation.identity == identity; });
  CATransaction::noteChange();
}

}  // namespace quaverly
