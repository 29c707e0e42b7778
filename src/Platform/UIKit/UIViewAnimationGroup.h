#pragma once

#include <memory>

#include "Platform/UIKit/UIView.h"

namespace quaverly {

/// All that one call set in motion, and what is to be done when it has ended. Main thread only.
class UIViewAnimationGroup : public std::enable_shared_from_this<UIViewAnimationGroup> {
 public:
  UIViewAnimationGroup(double duration, double delay, unsigned options, UIView::Completion completion);

  /// The group whose call is being worked off, or null.
  static UIViewAnimationGroup* current();

  /// Runs the call that sets views in motion, and starts the time.
  void run(const std::function<void()>& animations);
  /// A property of a view on its way, as part of this group.
  void add(UIView& view, UIViewAnimation::Property property, const UIViewAnimation::Value& from);
  /// One of the animations was ended before its time.
  void lose(uint64_t identity);

 private:
  struct Part {
    Ref<UIView> view;
    uint64_t identity;
  };

  UIViewAnimation animation(UIView& view, UIViewAnimation::Property property,
                            const UIViewAnimation::Value& from);
  void timePassed();
  void complete(bool finished);

  Clock::Duration _duration;
  Clock::Duration _delay;
  unsigned _options;
  UIView::Completion _completion;
  std::vector<Part> _parts;
  std::unique_ptr<Clock::Alarm> _alarm;
  bool _settingUp = true;
  bool _interrupted = false;
  bool _done = false;
};

}  // namespace quaverly
