#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Foundation/NSObject.h"
#include "Platform/QuartzCore/CAShapeLayer.h"
#include "Platform/QuartzCore/CGAffineTransform.h"
#include "Platform/UIKit/UIColor.h"
#include "Platform/UIKit/UIViewAnimation.h"
#include "Platform/UIKit/UIViewEnums.h"

namespace quaverly {

class UIWindow;

/// A rectangle on the screen that others lie in. It draws nothing: the host shows the tree, and tests read
/// it. A view owns its subviews. Lives and dies on the main thread.
class UIView : public NSObject {
 public:
  explicit UIView(CGRect frame = {});

  /// No other view of this process has it.
  uint64_t identity() const { return _identity; }

  // Place. A view's own coordinates are its bounds; its centre lies in its superview's.
  CGRect bounds() const { return _bounds; }
  void setBounds(CGRect bounds);
  CGPoint center() const { return _center; }
  void setCenter(CGPoint center);
  CGAffineTransform transform() const { return _transform; }
  void setTransform(CGAffineTransform transform);
  /// The upright rectangle around the view in its superview, transform included. Setting it chooses centre
  /// and bounds so that it becomes true.
  CGRect frame() const;
  void setFrame(CGRect frame);

  unsigned autoresizingMask() const { return _autoresizingMask; }
  void setAutoresizingMask(unsigned mask) { set(_autoresizingMask, mask); }
  bool autoresizesSubviews() const { return _autoresizesSubviews; }
  void setAutoresizesSubviews(bool resizes) { set(_autoresizesSubviews, resizes); }

  /// The best size for the view's contents within `limit`; its present one where contents do not tell.
  virtual CGSize sizeThatFits(CGSize limit) const;
  /// Takes the best size; the origin stays.
  void sizeToFit();

  // The tree.
  UIView* superview() const { return _superview; }
  const std::vector<Ref<UIView>>& subviews() const { return _subviews; }
  UIWindow* window() const;
  bool isDescendantOf(const UIView& view) const;
  /// Puts the view on top of the others, and takes it from where it was.
  void addSubview(Ref<UIView> view);
  void insertSubviewAtIndex(Ref<UIView> view, size_t index);
  void bringSubviewToFront(UIView& view);
  void removeFromSuperview();

  // Looks.
  const Ref<CALayer>& layer() const { return _layer; }
  double alpha() const { return _layer->opacity(); }
  void setAlpha(double alpha);
  bool isHidden() const { return _hidden; }
  void setHidden(bool hidden) { set(_hidden, hidden); }
  std::optional<CGColor> backgroundColor() const { return _layer->backgroundColor(); }
  void setBackgroundColor(std::optional<CGColor> color) { _layer->setBackgroundColor(color); }
  bool clipsToBounds() const { return _layer->masksToBounds(); }
  void setClipsToBounds(bool clips) { _layer->setMasksToBounds(clips); }
  UIViewContentMode contentMode() const { return _contentMode; }
  void setContentMode(UIViewContentMode mode) { set(_contentMode, mode); }
  /// Its own tint, or the nearest one above, or the system's blue.
  UIColor tintColor() const;
  void setTintColor(std::optional<UIColor> color) { set(_tintColor, color); }

  bool isUserInteractionEnabled() const { return _userInteractionEnabled; }
  void setUserInteractionEnabled(bool enabled) { set(_userInteractionEnabled, enabled); }

  /// What a person is told who cannot see it.
  const std::optional<std::string>& accessibilityLabel() const { return _accessibilityLabel; }
  void setAccessibilityLabel(std::optional<std::string> label) { set(_accessibilityLabel, std::move(label)); }

  /// What kind of thing it is for them; bits.
  unsigned accessibilityTraits() const { return _accessibilityTraits; }
  void setAccessibilityTraits(unsigned traits) { set(_accessibilityTraits, traits); }

  // Layout.
  void setNeedsLayout();
  /// Lays out what needs it, here and below.
  void layoutIfNeeded();

  // Animation.
  using Completion = std::function<void(bool finished)>;
  /// Runs `animations`; what it changes of alpha, transform, centre and bounds is seen changing over
  /// `duration` seconds after `delay`, while the views have the new values at once. `completion` runs once,
  /// when all of it has ended: with true after its time, with false as soon as something else takes over one
  /// of the properties or the view leaves its window. Never from inside this call.
  static void animateWithDurationDelayOptionsAnimationsCompletion(double duration, double delay,
                                                                  unsigned options,
                                                                  const std::function<void()>& animations,
                                                                  Completion completion = nullptr);
  const std::vector<UIViewAnimation>& animations() const { return _animations; }

 protected:
  ~UIView() override;

  /// Places the subviews; asked for after `setNeedsLayout` and after a change of size.
  virtual void layoutSubviews() {}
  virtual void didMoveToWindow() {}

  template <class T, class Value>
  static void set(T& field, Value&& value) {
    if (field == value) return;
    field = std::forward<Value>(value);
    CATransaction::noteChange();
  }

 private:
  friend class UIViewAnimationGroup;
  using Property = UIViewAnimation::Property;

  UIViewAnimation::Value valueOf(Property property) const;
  void animate(Property property, const UIViewAnimation::Value& from);
  void endAnimations(Property property);
  void removeAnimation(uint64_t identity);
  void windowChanged(bool inWindow);
  void resizeSubviews(CGSize from, CGSize to);
  void detach();

  uint64_t _identity;
  CGRect _bounds;
  CGPoint _center;
  CGAffineTransform _transform;
  UIView* _superview = nullptr;
  std::vector<Ref<UIView>> _subviews;
  Ref<CALayer> _layer;
  std::vector<UIViewAnimation> _animations;
  std::optional<UIColor> _tintColor;
  std::optional<std::string> _accessibilityLabel;
  unsigned _accessibilityTraits = UIAccessibilityTraitNone;
  unsigned _autoresizingMask = UIViewAutoresizingNone;
  UIViewContentMode _contentMode = UIViewContentMode::ScaleToFill;
  bool _autoresizesSubviews = true;
  bool _hidden = false;
  bool _userInteractionEnabled = true;
  bool _needsLayout = true;
};

}  // namespace quaverly
