#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quaverly {

/// A map from text to values that several threads read and write; the last write wins. Any thread.
template <class Value>
class CachesStore {
 public:
  /// An empty value for a key that is not there.
  Value objectForKey(std::string_view key) const {
    std::lock_guard lock(_mutex);
    const auto found = _values.find(key);
    return found == _values.end() ? Value() : found->second;
  }

  void setObjectForKey(Value value, std::string_view key) {
    std::lock_guard lock(_mutex);
    const auto found = _values.find(key);
    if (found == _values.end()) {
      _values.emplace(key, std::move(value));
    } else {
      std::swap(found->second, value);  // the old one goes when the lock is gone
    }
  }

  void removeObjectForKey(std::string_view key) {
    Values removed;
    std::lock_guard lock(_mutex);
    if (const auto found = _values.find(key); found != _values.end()) removed.insert(_values.extract(found));
  }

  /// The keys as they are now, sorted.
  std::vector<std::string> allKeys() const {
    std::lock_guard lock(_mutex);
    std::vector<std::string> keys;
    for (const auto& [key, value] : _values) keys.push_back(key);
    return keys;
  }

 private:
  using Values = std::map<std::string, Value, std::less<>>;

  mutable std::mutex _mutex;
  Values _values;
};

}  // namespace quaverly
