#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quaverly {

/// The numbers of a JSON text, for a parser that takes only those that a double can hold.
struct JSONNumbers {
  explicit JSONNumbers(std::string_view text);

  std::string text;                 ///< the same text, with 0 in place of each number that is too large
  std::vector<std::string> digits;  ///< all numbers in their order, as they were written
};

}  // namespace quaverly
