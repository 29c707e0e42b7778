#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

/// Something that happened to an object, with what else there is to know about it.
class NSNotification {
 public:
  using UserInfo = std::map<std::string, Ref<NSObject>, std::less<>>;

  NSNotification(std::string_view name, NSObject* object, UserInfo userInfo)
      : _name(name), _object(object), _userInfo(std::move(userInfo)) {}

  std::string_view name() const { return _name; }
  NSObject* object() const { return _object.get(); }
  const UserInfo& userInfo() const { return _userInfo; }

 private:
  std::string _name;
  Ref<NSObject> _object;
  UserInfo _userInfo;
};

/// Tells observers what happens to objects. Main thread only.
///
/// Observers are unowned: one that is gone is told nothing. Observed objects are known by their identity, so
/// whoever observes an object stops before the object goes.
class NSNotificationCenter {
 public:
  static NSNotificationCenter& defaultCenter();

  /// Calls `operation` for every notification of that name from `object`; null means from any object.
  template <class T>
  void addObserver(T* observer, void (T::*operation)(const NSNotification&), std::string_view name,
                   NSObject* object) {
    add(
        observer, [observer, operation](const NSNotification& told) { (observer->*operation)(told); }, name,
        object);
  }

  /// Takes back what was added for this observer, name and object; null means for any object.
  void removeObserver(const NSObject* observer, std::string_view name, const NSObject* object);

  /// Tells the observers in the order in which they were added, before it returns. Observer and object live
  /// through the call. An observer that is removed meanwhile is not told; one that is added is told next
  /// time.
  void postNotificationName(std::string_view name, NSObject* object, NSNotification::UserInfo userInfo = {});

 private:
  struct Observation;
  using Observations = std::vector<std::shared_ptr<Observation>>;
  using ObservationsByObject = std::unordered_map<const NSObject*, Observations>;
  using Operation = std::function<void(const NSNotification&)>;

  NSNotificationCenter() = default;

  void add(NSObject* observer, Operation operation, std::string_view name, NSObject* object);
  Observations observationsFor(std::string_view name, const NSObject* object) const;

  // By name and object, so that observing thousands of connections costs none of them anything.
  std::map<std::string, ObservationsByObject, std::less<>> _observations;
  unsigned long _count = 0;
};

}  // namespace quaverly
