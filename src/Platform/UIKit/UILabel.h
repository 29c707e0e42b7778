#pragma once

#include <optional>
#include <string>
#include <utility>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

/// A text on a screen. Main thread only.
class UILabel : public NSObject {
 public:
  const std::optional<std::string>& text() const { return _text; }
  void setText(std::optional<std::string> text) { _text = std::move(text); }

 private:
  std::optional<std::string> _text;
};

}  // namespace quaverly
