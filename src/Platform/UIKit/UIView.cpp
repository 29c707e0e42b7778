#include "Platform/UIKit/UIView.h"

#include <algorithm>
#include <cmath>

#include "Platform/Foundation/NSThread.h"
#include "Platform/UIKit/UIWindow.h"

namespace quaverly {
namespace {

uint64_t nextIdentity() {
  static uint64_t last = 0;
  return ++last;
}

/// The bounds whose image under the transform is as large as `size`; a transform that cannot be undone
/// leaves the size.
CGSize sizeBefore(const CGAffineTransform& transform, CGSize size) {
  const double determinant = transform.a * transform.d - transform.b * transform.c;
  if (transform.isIdentity() || std::abs(determinant) < 1e-9) return size;
  const CGAffineTransform inverse{transform.d / determinant,
                                  -transform.b / determinant,
                                  -transform.c / determinant,
                                  transform.a / determinant,
                                  0,
                                  0};
  return CGRectApplyAffineTransform({0, 0, size.width, size.height}, inverse).size();
}

}  // namespace

UIView::UIView(CGRect frame)
    : _identity(nextIdentity()),
      _bounds{0, 0, frame.width, frame.height},
      _center{frame.midX(), frame.midY()},
      _layer(make<CALayer>()) {}

UIView::~UIView() {
  NSThread::requireMainThread("a view was let go");
  for (const auto& view : _subviews) view->_superview = nullptr;
}

void UIView::setBounds(CGRect bounds) {
  if (bounds == _bounds) return;
  const auto from = valueOf(Property::bounds);
  const CGSize before = _bounds.size();
  _bounds = bounds;
  CATransaction::noteChange();
  animate(Property::bounds, from);
  if (before == bounds.size()) return;
  resizeSubviews(before, bounds.size());
  setNeedsLayout();
}

void UIView::setCenter(CGPoint center) {
  const auto from = valueOf(Property::center);
  set(_center, center);
  animate(Property::center, from);
}

void UIView::setTransform(CGAffineTransform transform) {
  const auto from = valueOf(Property::transform);
  set(_transform, transform);
  animate(Property::transform, from);
}

void UIView::setAlpha(double alpha) {
  const auto from = valueOf(Property::alpha);
  _layer->setOpacity(alpha);
  animate(Property::alpha, from);
}

CGRect UIView::frame() const {
  const CGRect around = CGRectApplyAffineTransform(
      {-_bounds.width / 2, -_bounds.height / 2, _bounds.width, _bounds.height}, _transform);
  return {_center.x + around.x, _center.y + around.y, around.width, around.height};
}

void UIView::setFrame(CGRect frame) {
  const CGSize size = sizeBefore(_transform, frame.size());
  setBounds({_bounds.x, _bounds.y, size.width, size.height});
  setCenter({frame.midX() - _transform.tx, frame.midY() - _transform.ty});
}

CGSize UIView::sizeThatFits(CGSize) const {
  return _bounds.size();
}

void UIView::sizeToFit() {
  const CGSize size = sizeThatFits(_bounds.size());
  const CGRect old = frame();
  setFrame({old.x, old.y, size.width, size.height});
}

UIWindow* UIView::window() const {
  const UIView* top = this;
  while (top->_superview) top = top->_superview;
  return const_cast<UIWindow*>(dynamic_cast<const UIWindow*>(top));
}

bool UIView::isDescendantOf(const UIView& view) const {
  const UIView* at = this;
  while (at && at != &view) at = at->_superview;
  return at != nullptr;
}

void UIView::addSubview(Ref<UIView> view) {
  insertSubviewAtIndex(std::move(view), _subviews.size());
}

void UIView::insertSubviewAtIndex(Ref<UIView> view, size_t index) {
  if (!view || isDescendantOf(*view)) return;
  const bool wasInWindow = view->window() != nullptr;
  const bool isInWindow = window() != nullptr;
  view->detach();
  const auto place = _subviews.begin() + static_cast<std::ptrdiff_t>(std::min(index, _subviews.size()));
  _subviews.insert(place, view);
  view->_superview = this;
  CATransaction::noteChange();
  setNeedsLayout();
  if (wasInWindow != isInWindow) view->windowChanged(isInWindow);
}

void UIView::bringSubviewToFront(UIView& view) {
  if (view._superview == this) addSubview(Ref<UIView>(&view));
}

void UIView::removeFromSuperview() {
  if (!_superview) return;
  const Ref<UIView> kept(this);
  const bool wasInWindow = window() != nullptr;
  detach();
  if (wasInWindow) windowChanged(false);
}

/// Leaves the superview, which may end this object unless somebody keeps it.
void UIView::detach() {
  if (!_superview) return;
  UIView& from = *std::exchange(_superview, nullptr);
  from.setNeedsLayout();
  std::erase_if(from._subviews, [this](const Ref<UIView>& view) { return view.get() == this; });
  CATransaction::noteChange();
}

void UIView::windowChanged(bool inWindow) {
  if (!inWindow) {
    for (const auto property : {Property::alpha, Property::transform, Property::center, Property::bounds})
      endAnimations(property);
  }
  didMoveToWindow();
  const auto views = _subviews;
  for (const auto& view : views) {
    if (view->_superview == this) view->windowChanged(inWindow);
  }
}

UIColor UIView::tintColor() const {
  const UIView* at = this;
  while (at && !at->_tintColor) at = at->_superview;
  return at ? *at->_tintColor : UIColor::systemBlueColor();
}

void UIView::setNeedsLayout() {
  _needsLayout = true;
  CATransaction::noteChange();
}

void UIView::layoutIfNeeded() {
  const Ref<UIView> kept(this);
  if (std::exchange(_needsLayout, false)) layoutSubviews();
  const auto views = _subviews;
  for (const auto& view : views) {
    if (view->_superview == this) view->layoutIfNeeded();
  }
}

}  // namespace quaverly
