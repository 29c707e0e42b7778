#include "Host/Page/AnswerPieces.h"

#include <algorithm>
#include <span>
#include <utility>

#include "Platform/Foundation/NSDataFile.h"

namespace quaverly::page {

AnswerPieces::AnswerPieces(std::string head, NSData body) : _head(std::move(head)), _body(std::move(body)) {}

bool AnswerPieces::next() {
  _piece = std::exchange(_head, {});
  const uint64_t length = std::min<uint64_t>(pieceSize, _body.length() - _sent);
  if (length > 0 && !append(length)) {
    _isBroken = true;
    return false;
  }
  _sent += length;
  return !_piece.empty();
}

bool AnswerPieces::append(uint64_t length) {
  const auto slice = _body.slice();
  if (!slice) {
    _piece.append(_body.text().substr(_sent, length));
    return true;
  }
  const size_t start = _piece.size();
  _piece.resize(start + length);
  const auto room = std::as_writable_bytes(std::span(_piece)).subspan(start);
  return slice->file->read(slice->offset + _sent, room) == length;
}

}  // namespace quaverly::page
