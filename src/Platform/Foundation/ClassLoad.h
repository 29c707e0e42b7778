#pragma once

namespace quaverly {

/// Runs the class-load hook `T::load()` once per process, after that of its superclass when `T::Superclass`
/// names a class with a hook of its own.
template <class T>
void loadClass() {
  static const bool loaded = [] {
    if constexpr (requires { typename T::Superclass; }) loadClass<typename T::Superclass>();
    T::load();
    return true;
  }();
  static_cast<void>(loaded);
}

/// A namespace-scope object of this type in a class's source file runs the hook before `main`.
template <class T>
struct ClassLoadHook {
  ClassLoadHook() { loadClass<T>(); }
};

}  // namespace quaverly
