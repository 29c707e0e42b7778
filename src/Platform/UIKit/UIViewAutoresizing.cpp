#include "Platform/UIKit/UIView.h"

namespace quaverly {
namespace {

/// One direction of a view's place in its superview: before it, itself, after it.
struct Span {
  double before;
  double length;
};

/// What may give way takes the change, in proportion to what it has; equally when none has anything.
Span resized(Span span, double from, double to, bool beforeGives, bool lengthGives, bool afterGives) {
  const double after = from - span.before - span.length;
  const double share =
      (beforeGives ? span.before : 0) + (lengthGives ? span.length : 0) + (afterGives ? after : 0);
  const int parts = beforeGives + lengthGives + afterGives;
  if (parts == 0) return span;
  const double change = to - from;
  const auto grown = [&](double part, bool gives) {
    if (!gives) return part;
    if (parts == 1) return part + change;
    return share != 0 ? part + change * part / share : part + change / parts;
  };
  return {grown(span.before, beforeGives), grown(span.length, lengthGives)};
}

}  // namespace

void UIView::resizeSubviews(CGSize from, CGSize to) {
  if (!_autoresizesSubviews) return;
  for (const auto& view : _subviews) {
    const unsigned mask = view->_autoresizingMask;
    if (mask == UIViewAutoresizingNone) continue;
    const CGRect bounds = view->_bounds;
    const CGPoint center = view->_center;
    const Span across =
        resized({center.x - bounds.width / 2, bounds.width}, from.width, to.width,
                mask & UIViewAutoresizingFlexibleLeftMargin, mask & UIViewAutoresizingFlexibleWidth,
                mask & UIViewAutoresizingFlexibleRightMargin);
    const Span down =
        resized({center.y - bounds.height / 2, bounds.height}, from.height, to.height,
                mask & UIViewAutoresizingFlexibleTopMargin, mask & UIViewAutoresizingFlexibleHeight,
                mask & UIViewAutoresizingFlexibleBottomMargin);
    view->setBounds({bounds.x, bounds.y, across.length, down.length});
    view->setCenter({across.before + across.length / 2, down.before + down.length / 2});
  }
}

}  // namespace quaverly
