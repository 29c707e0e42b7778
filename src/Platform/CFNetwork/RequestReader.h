#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/CFNetwork/RequestHead.h"

namespace quaverly {

/// Puts the head of a request together from bytes that come in pieces, and refuses a bad one as early as it
/// shows.
class RequestReader {
 public:
  static constexpr size_t maximumHeadSize = 64 * 1024;

  /// False when the head is malformed or too long, now or earlier.
  [[nodiscard]] bool append(std::string_view bytes);

  /// Null until the head is complete.
  const RequestHead* head() const { return _head ? &*_head : nullptr; }

 private:
  bool readHead();
  bool isWellFormedSoFar();
  bool hasProperLineEnds(std::string_view text);

  std::string _bytes;
  size_t _checked = 0;  // how many bytes of the head have proper line ends
  bool _isRequestLineChecked = false;
  bool _isRefused = false;
  std::optional<RequestHead> _head;
};

}  // namespace quaverly
