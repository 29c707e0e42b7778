#pragma once

#include <string>
#include <utility>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

/// A shared text whose contents are overwritten in place: whoever holds it sees the change.
class NSMutableString : public NSObject {
 public:
  explicit NSMutableString(std::string string = {}) : _string(std::move(string)) {}

  const std::string& string() const { return _string; }
  void setString(std::string string) { _string = std::move(string); }

 private:
  std::string _string;
};

}  // namespace quaverly
