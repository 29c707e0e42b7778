#include "Platform/UIKit/UIScrollView.h"

#include <algorithm>

namespace quaverly {

void UIScrollView::setContentOffset(CGPoint offset) {
  if (offset == contentOffset()) return;
  ++_offsetChanges;
  moveTo(offset);
}

void UIScrollView::scrollTo(CGPoint offset) {
  if (offset != contentOffset()) moveTo(offset);
  const CGPoint settled = clamped(contentOffset());
  if (settled != contentOffset()) moveTo(settled);
}

void UIScrollView::setContentSize(CGSize size) {
  if (size == _contentSize) return;
  set(_contentSize, size);
  setContentOffset(clamped(contentOffset()));
}

void UIScrollView::setContentInset(UIEdgeInsets inset) {
  if (inset == _contentInset) return;
  set(_contentInset, inset);
  setContentOffset(clamped(contentOffset()));
}

CGPoint UIScrollView::clamped(CGPoint offset) const {
  const double leastX = -_contentInset.left;
  const double leastY = -_contentInset.top;
  const double mostX = _contentSize.width + _contentInset.right - bounds().width;
  const double mostY = _contentSize.height + _contentInset.bottom - bounds().height;
  return {std::clamp(offset.x, leastX, std::max(leastX, mostX)),
          std::clamp(offset.y, leastY, std::max(leastY, mostY))};
}

void UIScrollView::moveTo(CGPoint offset) {
  const Ref<UIScrollView> kept(this);
  setBounds({offset.x, offset.y, bounds().width, bounds().height});
  didScroll();
}

}  // namespace quaverly
