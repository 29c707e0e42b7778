#pragma once

#include <cstdint>
#include <functional>
#include <utility>

namespace quaverly {

/// Keeps count of what changes in what is seen, so that whoever shows it need not look when nothing did.
/// Main thread only.
class CATransaction {
 public:
  /// A number that grows with every change of a view, a layer or an item.
  static uint64_t changeCount() { return _changeCount; }
  static void noteChange() {
    ++_changeCount;
    if (_commit && !_isScheduled) schedule();
  }

  /// What is done about changes, at the end of the turn of the main loop that made them; what it changes
  /// itself is its own to see to. None is null.
  static void setCommit(std::function<void()> commit) { _commit = std::move(commit); }

 private:
  static void schedule();
  static void commit();

  static inline std::function<void()> _commit;
  static inline bool _isScheduled = false;
  static inline uint64_t _changeCount = 1;
};

}  // namespace quaverly
