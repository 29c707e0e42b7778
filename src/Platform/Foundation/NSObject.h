#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <memory>
#include <utility>

namespace quaverly {

/// The root of every shared class: an intrusive, atomic reference count that starts at one and belongs to the
/// maker. Counting is virtual, so that an object can be immortal.
class NSObject {
 public:
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;

  virtual NSObject* retain();
  virtual void release();
  virtual NSObject* autorelease() { return this; }
  virtual size_t retainCount() const;

  /// A flag that reads false once this object is gone. Shared by all `Unowned` references to it. Main thread
  /// only.
  std::shared_ptr<const bool> liveness();

 protected:
  NSObject() = default;
  virtual ~NSObject();

 private:
  std::atomic<size_t> _retainCount{1};
  std::shared_ptr<bool> _liveness;  // made when first asked for
};

/// An owning reference: retains while it holds, nothing when empty.
template <class T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}

  /// Retains `object`, which somebody else keeps owning too.
  explicit Ref(T* object) : _object(object) {
    if (_object) _object->retain();
  }
  /// Takes over a count that the caller owns.
  static Ref adopt(T* object) {
    Ref ref;
    ref._object = object;
    return ref;
  }

  Ref(const Ref& other) : Ref(other._object) {}
  Ref(Ref&& other) noexcept : _object(std::exchange(other._object, nullptr)) {}
  template <std::derived_from<T> U>
  Ref(const Ref<U>& other) : Ref(other.get()) {}
  Ref& operator=(Ref other) noexcept {
    std::swap(_object, other._object);
    return *this;
  }
  ~Ref() {
    if (_object) _object->release();
  }

  T* get() const { return _object; }
  T* operator->() const { return _object; }
  T& operator*() const { return *_object; }
  explicit operator bool() const { return _object != nullptr; }
  friend bool operator==(const Ref& a, const Ref& b) { return a._object == b._object; }

 private:
  T* _object = nullptr;
};

/// Makes an object that the returned reference alone owns.
template <class T, class... Arguments>
Ref<T> make(Arguments&&... arguments) {
  return Ref<T>::adopt(new T(std::forward<Arguments>(arguments)...));
}

/// A reference to a delegate, target or data source: owns nothing and reads as null once its object is gone.
/// Main thread only.
template <class T>
class Unowned {
 public:
  Unowned() = default;
  Unowned(std::nullptr_t) {}
  /// To an object by one of its interfaces, too.
  template <std::derived_from<NSObject> Object>
  requires std::convertible_to<Object*, T*> Unowned(Object* object)
      : _object(object), _alive(object ? object->liveness() : nullptr) {}

  T* get() const { return _alive && *_alive ? _object : nullptr; }
  explicit operator bool() const { return get() != nullptr; }

 private:
  T* _object = nullptr;
  std::shared_ptr<const bool> _alive;
};

/// Sends a message to an object that may be absent: a message to nothing does nothing and answers an empty
/// value.
template <class T, class Result, class... Parameters, class... Arguments>
Result send(const Ref<T>& receiver, Result (T::*operation)(Parameters...), Arguments&&... arguments) {
  if (!receiver) return Result();
  return (receiver.get()->*operation)(std::forward<Arguments>(arguments)...);
}

}  // namespace quaverly
