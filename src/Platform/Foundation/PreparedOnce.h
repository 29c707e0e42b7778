#pragma once

#include <map>
#include <mutex>
#include <utility>

namespace quaverly {

/// Values that are costly to prepare and few: each is prepared when first asked for and kept for the life of
/// the process. Any thread.
template <class Key, class Value>
class PreparedOnce {
 public:
  /// The value of `key`, made by `prepare(key)` when it is not there yet. Stays where it is.
  template <class Prepare>
  const Value& get(const Key& key, Prepare prepare) {
    const std::lock_guard lock(_mutex);
    const auto found = _values.find(key);
    if (found != _values.end()) return found->second;
    return _values.emplace(key, prepare(key)).first->second;
  }

 private:
  std::mutex _mutex;
  std::map<Key, Value> _values;
};

}  // namespace quaverly
