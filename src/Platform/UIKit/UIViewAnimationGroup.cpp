#include "Platform/UIKit/UIViewAnimationGroup.h"

#include <algorithm>
#include <set>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly {
namespace {

using Group = UIViewAnimationGroup;
using Value = UIViewAnimation::Value;

Group* currentGroup = nullptr;

/// Groups that were taken over while a call is worked off: their completions run at its end, when the new
/// values are all in place.
std::vector<std::shared_ptr<Group>> interrupted;

/// Groups live until they are done. Never destroyed, because alarms may end after everything static.
std::set<std::shared_ptr<Group>>& liveGroups() {
  static auto& groups = *new std::set<std::shared_ptr<Group>>;
  return groups;
}

uint64_t nextAnimation() {
  static uint64_t last = 0;
  return ++last;
}

Clock::Duration seconds(double count) {
  return std::chrono::duration_cast<Clock::Duration>(std::chrono::duration<double>(std::max(count, 0.0)));
}

}  // namespace

UIViewAnimationGroup::UIViewAnimationGroup(double duration, double delay, unsigned options,
                                           UIView::Completion completion)
    : _duration(seconds(duration)),
      _delay(seconds(delay)),
      _options(options),
      _completion(std::move(completion)) {}

UIViewAnimationGroup* UIViewAnimationGroup::current() {
  return currentGroup;
}

void UIViewAnimationGroup::run(const std::function<void()>& animations) {
  const auto kept = shared_from_this();
  liveGroups().insert(kept);
  auto* const outer = std::exchange(currentGroup, this);
  if (animations) animations();
  currentGroup = outer;
  const bool endless = (_options & UIViewAnimationOptionRepeat) != 0 && !_parts.empty();
  if (!endless) {
    _alarm = Device::current().clock->after(_delay + _duration, [weak = weak_from_this()] {
      if (const auto group = weak.lock()) group->timePassed();
    });
  }
  if (!outer) {
    for (const auto& group : std::exchange(interrupted, {})) group->complete(false);
  }
  _settingUp = false;
}

void UIViewAnimationGroup::add(UIView& view, UIViewAnimation::Property property, const Value& from) {
  const auto already = std::ranges::find_if(view._animations, [&](const UIViewAnimation& running) {
    return running.group.get() == this && running.property == property;
  });
  if (already != view._animations.end()) {
    already->to = view.valueOf(property);
    return;
  }
  const UIViewAnimation started = animation(view, property, from);
  view.endAnimations(property);
  view._animations.push_back(started);
  _parts.push_back({Ref<UIView>(&view), started.identity});
  CATransaction::noteChange();
}

/// What begins from the current state begins where the property is seen, unless it was set anew meanwhile.
UIViewAnimation UIViewAnimationGroup::animation(UIView& view, UIViewAnimation::Property property,
                                                const Value& from) {
  UIViewAnimation animation{
      nextAnimation(), property,  from,     view.valueOf(property), Device::current().clock->now(),
      _delay,          _duration, _options, shared_from_this()};
  if ((_options & UIViewAnimationOptionBeginFromCurrentState) == 0) return animation;
  const auto running = std::ranges::find_if(view._animations, [&](const UIViewAnimation& other) {
    return other.property == property && other.to == from;
  });
  if (running != view._animations.end()) animation.from = running->valueAt(animation.begin);
  return animation;
}

void UIViewAnimationGroup::lose(uint64_t identity) {
  const auto removed = std::erase_if(_parts, [&](const Part& part) { return part.identity == identity; });
  if (removed == 0) return;
  _interrupted = true;
  if (!_parts.empty()) return;
  if (_settingUp) {
    NSRunLoop::mainRunLoop().performBlock([group = shared_from_this()] { group->complete(false); });
  } else if (currentGroup) {
    interrupted.push_back(shared_from_this());
  } else {
    complete(false);
  }
}

void UIViewAnimationGroup::timePassed() {
  const auto kept = shared_from_this();
  for (const auto& part : std::exchange(_parts, {})) part.view->removeAnimation(part.identity);
  complete(!_interrupted);
}

void UIViewAnimationGroup::complete(bool finished) {
  if (std::exchange(_done, true)) return;
  const auto kept = shared_from_this();
  _alarm.reset();
  liveGroups().erase(kept);
  if (const auto completion = std::exchange(_completion, nullptr)) completion(finished);
}

}  // namespace quaverly
