#pragma once

#include <string>
#include <vector>

namespace quaverly {

class NSLocale {
 public:
  /// The user's languages as identifiers ("en", "pt-BR"), the most wanted first.
  static const std::vector<std::string>& preferredLanguages();
};

}  // namespace quaverly
