#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>

#include "Platform/Foundation/NSData.h"

namespace quaverly {

/// One piece of a file's metadata. A common key tells what it is whatever the file's format; an item without
/// one has a meaning in its own format only.
class AVMetadataItem {
 public:
  /// Pictures of ID3 tags come as a dictionary, with their bytes under "data".
  using Dictionary = std::map<std::string, NSData, std::less<>>;
  using Value = std::variant<std::string, NSData, Dictionary>;

  AVMetadataItem(std::optional<std::string> commonKey, Value value)
      : _commonKey(std::move(commonKey)), _value(std::move(value)) {}

  const std::optional<std::string>& commonKey() const { return _commonKey; }
  const Value& value() const { return _value; }

 private:
  std::optional<std::string> _commonKey;
  Value _value;
};

}  // namespace quaverly
