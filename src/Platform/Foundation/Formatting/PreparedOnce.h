#pragma once

#include <map>
#include <memory>
#include <mutex>

namespace quaverly {

/// Values that are costly to prepare and few: each is prepared when first asked for and kept for the life of
/// the process. Any thread.
///
/// A `Value` is made from a `Key`, a cheap view, and has a `key()` of its own that stays valid while it
/// lives. There is one such object per type.
template <class Value, class Key>
class PreparedOnce {
 public:
  /// The value of a key. Threads ask for the same one again and again, so each looks at its last one first.
  const Value& get(const Key& key) {
    thread_local const Value* last = nullptr;
    if (!last || last->key() != key) last = &find(key);
    return *last;
  }

 private:
  const Value& find(const Key& key) {
    const std::lock_guard lock(_mutex);
    const auto found = _values.find(key);
    if (found != _values.end()) return *found->second;
    auto value = std::make_unique<const Value>(key);
    const auto ownKey = value->key();
    return *_values.emplace(ownKey, std::move(value)).first->second;
  }

  std::mutex _mutex;
  std::map<Key, std::unique_ptr<const Value>> _values;
};

}  // namespace quaverly
