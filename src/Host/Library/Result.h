#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace quaverly::library {

/// Why something did not happen: one sentence for people, which says what to do where that can be known.
struct Failure {
  std::string reason;
};

/// The outcome of work that has no other result: nothing when it was done.
using MaybeFailure = std::optional<Failure>;

/// A value, or why there is none.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : _content(std::move(value)) {}
  Result(Failure failure) : _content(std::move(failure)) {}

  explicit operator bool() const { return std::holds_alternative<T>(_content); }
  /// Only when there is a value; a temporary result gives it away.
  T& operator*() & { return std::get<T>(_content); }
  const T& operator*() const& { return std::get<T>(_content); }
  T operator*() && { return std::get<T>(std::move(_content)); }
  T* operator->() { return &std::get<T>(_content); }
  const T* operator->() const { return &std::get<T>(_content); }
  /// Only when there is none.
  const Failure& failure() const { return std::get<Failure>(_content); }

 private:
  std::variant<T, Failure> _content;
};

}  // namespace quaverly::library
