#pragma once

#include <string>
#include <string_view>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

/// What is known of a class that is looked up by name: how to make an instance, and the framework that must
/// be loaded for it to be found (empty for a class that is always there).
class NSClass {
 public:
  virtual ~NSClass() = default;
  NSClass(std::string_view name, std::string_view framework);
  NSClass(const NSClass&) = delete;
  NSClass& operator=(const NSClass&) = delete;

  /// A new instance.
  virtual Ref<NSObject> allocObject() const = 0;

  std::string_view name() const { return _name; }
  std::string_view framework() const { return _framework; }

 private:
  std::string_view _name;
  std::string_view _framework;
};

/// A class by its C++ type. One namespace-scope object of this type in the class's source file makes it
/// known. The texts must live for the whole process.
template <class T>
class NSClassOf : public NSClass {
 public:
  using NSClass::NSClass;
  Ref<T> alloc() const { return make<T>(); }
  Ref<NSObject> allocObject() const override { return alloc(); }
};

/// The class of that name, or null when no such class is known, its framework is not loaded, or the device
/// lacks it.
const NSClass* NSClassFromString(std::string_view name);

/// The same with its type. `T` must be the type that registered under this name, or the result is null.
template <class T>
const NSClassOf<T>* NSClassFromString(std::string_view name) {
  return dynamic_cast<const NSClassOf<T>*>(NSClassFromString(name));
}

/// A new instance of the class, or nothing when there is no such class.
template <class T>
Ref<T> allocFromString(std::string_view className) {
  const auto* found = NSClassFromString<T>(className);
  return found ? found->alloc() : nullptr;
}

/// A new instance of a class that need not be known here, as the kind of object that it must be: nothing when
/// there is no such class, or its objects are of another kind.
template <class Kind>
Ref<Kind> allocKindFromString(std::string_view className) {
  const auto* found = NSClassFromString(className);
  const Ref<NSObject> object = found ? found->allocObject() : nullptr;
  return Ref<Kind>(dynamic_cast<Kind*>(object.get()));
}

}  // namespace quaverly
