#pragma once

#include <string>
#include <string_view>

#include "Platform/Foundation/NSData.h"

namespace quaverly::page {

/// An answer in pieces of bounded size, so that a large file is neither read whole nor sent without a pause.
class AnswerPieces {
 public:
  static constexpr size_t pieceSize = size_t{256} * 1024;

  AnswerPieces() = default;
  AnswerPieces(std::string head, NSData body);

  /// Goes to the next piece, the first time to the first; false at the end, and when the file that backs the
  /// body can no longer be read as it was.
  [[nodiscard]] bool next();
  bool isBroken() const { return _isBroken; }
  /// Valid until `next`.
  std::string_view piece() const { return _piece; }

 private:
  bool append(uint64_t length);

  std::string _piece;
  std::string _head;
  NSData _body;
  uint64_t _sent = 0;  // of the body
  bool _isBroken = false;
};

}  // namespace quaverly::page
