#pragma once

#include "Platform/UIKit/UIView.h"

namespace quaverly {

struct UIEdgeInsets {
  double top = 0;
  double left = 0;
  double bottom = 0;
  double right = 0;
  bool operator==(const UIEdgeInsets&) const = default;
};

enum class UIAnimated { No, Yes };

class UIScrollView;

class UIScrollViewDelegate {
 public:
  virtual ~UIScrollViewDelegate() = default;
  virtual void scrollViewDidScroll(UIScrollView&) {}
};

/// A view onto something larger. The offset is the point of the content at the view's corner, and the origin
/// of its bounds. Main thread only.
class UIScrollView : public UIView {
 public:
  explicit UIScrollView(CGRect frame = {}) : UIView(frame) { setClipsToBounds(true); }

  CGPoint contentOffset() const { return bounds().origin(); }
  /// Tells the delegate, unless the offset is what it was.
  void setContentOffset(CGPoint offset);
  void setContentOffsetAnimated(CGPoint offset, UIAnimated) { setContentOffset(offset); }
  /// What a person does: drags the content there and lets go. Beyond its ends it springs back.
  void scrollTo(CGPoint offset);
  /// Grows whenever the bundle, not a person, chose the offset.
  uint64_t offsetChanges() const { return _offsetChanges; }

  CGSize contentSize() const { return _contentSize; }
  void setContentSize(CGSize size);
  /// Room around the content. A change brings the offset back to where there is something.
  const UIEdgeInsets& contentInset() const { return _contentInset; }
  void setContentInset(UIEdgeInsets inset);

  bool showsVerticalScrollIndicator() const { return _showsVerticalScrollIndicator; }
  void setShowsVerticalScrollIndicator(bool shows) { set(_showsVerticalScrollIndicator, shows); }

 protected:
  virtual void didScroll() {}

 private:
  CGPoint clamped(CGPoint offset) const;
  void moveTo(CGPoint offset);

  CGSize _contentSize;
  UIEdgeInsets _contentInset;
  uint64_t _offsetChanges = 0;
  bool _showsVerticalScrollIndicator = true;
};

}  // namespace quaverly
