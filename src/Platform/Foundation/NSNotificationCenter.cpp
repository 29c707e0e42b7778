#include "Platform/Foundation/NSNotificationCenter.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quaverly {

struct NSNotificationCenter::Observation {
  const NSObject* identity;
  Unowned<NSObject> observer;
  Operation operation;
  unsigned long number;  // in the order of adding, over all names and objects
  bool isRemoved = false;
};

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
  static NSNotificationCenter center;
  return center;
}

void NSNotificationCenter::add(NSObject* observer, Operation operation, std::string_view name,
                               NSObject* object) {
  auto named = _observations.find(name);
  if (named == _observations.end()) named = _observations.emplace(name, ObservationsByObject()).first;
  auto& observations = named->second[object];
  std::erase_if(observations, [](const auto& observation) { return !observation->observer; });
  observations.push_back(std::make_shared<Observation>(
      Observation{observer, Unowned<NSObject>(observer), std::move(operation), _count++}));
}

void NSNotificationCenter::removeObserver(const NSObject* observer, std::string_view name,
                                          const NSObject* object) {
  const auto named = _observations.find(name);
  if (named == _observations.end()) return;
  auto& byObject = named->second;
  const auto removeFrom = [&](ObservationsByObject::iterator at) {
    std::erase_if(at->second, [&](const auto& observation) {
      if (observation->identity == observer) observation->isRemoved = true;
      return observation->isRemoved || !observation->observer;
    });
    return at->second.empty() ? byObject.erase(at) : std::next(at);
  };
  if (!object) {
    for (auto at = byObject.begin(); at != byObject.end();) at = removeFrom(at);
  } else if (const auto found = byObject.find(object); found != byObject.end()) {
    removeFrom(found);
  }
}

NSNotificationCenter::Observations NSNotificationCenter::observationsFor(std::string_view name,
                                                                         const NSObject* object) const {
  const auto named = _observations.find(name);
  if (named == _observations.end()) return {};
  const auto of = [&](const NSObject* which) -> Observations {
    const auto found = named->second.find(which);
    return found == named->second.end() ? Observations() : found->second;
  };
  if (!object) return of(nullptr);
  const Observations ofObject = of(object);
  const Observations ofAny = of(nullptr);
  Observations all;
  std::ranges::merge(ofObject, ofAny, std::back_inserter(all), {}, &Observation::number,
                     &Observation::number);
  return all;
}

void NSNotificationCenter::postNotificationName(std::string_view name, NSObject* object,
                                                NSNotification::UserInfo userInfo) {
  const NSNotification notification(name, object, std::move(userInfo));
  for (const auto& observation : observationsFor(name, object)) {
    const Ref<NSObject> observer(observation->observer.get());
    if (observer && !observation->isRemoved) observation->operation(notification);
  }
}

}  // namespace quaverly
