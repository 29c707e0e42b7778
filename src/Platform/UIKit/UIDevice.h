#pragma once

#include <string>

namespace quaverly {

/// The device as the screens know it.
class UIDevice {
 public:
  static const UIDevice& currentDevice();

  /// As the system writes it, for example "8.4.1".
  const std::string& systemVersion() const;
};

}  // namespace quaverly
