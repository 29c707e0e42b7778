#include "Platform/Foundation/Sockets/SendQueue.h"

#include <sys/sendfile.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "Platform/Foundation/NSDataFile.h"

namespace quaverly {
namespace {

ssize_t sendBytes(int socket, std::span<const std::byte> bytes) {
  return ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

/// For file systems that cannot send by themselves.
ssize_t sendCopied(int socket, const NSData::Slice& slice) {
  std::array<std::byte, 64 * 1024> buffer;
  const auto wanted = std::min<uint64_t>(slice.length, buffer.size());
  const auto count = slice.file->read(slice.offset, std::span(buffer).first(wanted));
  if (!count || *count == 0) return 0;
  return sendBytes(socket, std::span(buffer).first(*count));
}

ssize_t sendFilePart(int socket, const NSData::Slice& slice) {
  auto offset = static_cast<off_t>(slice.offset);
  const ssize_t count = ::sendfile(socket, slice.file->descriptor(), &offset, slice.length);
  if (count < 0 && (errno == EINVAL || errno == ENOSYS)) return sendCopied(socket, slice);
  return count;
}

SendQueue::Outcome outcomeOf(int error) {
  switch (error) {
    case EAGAIN:
    case EINTR:
      return SendQueue::Outcome::full;
    case EIO:
      return SendQueue::Outcome::sourceEnded;
    default:
      return SendQueue::Outcome::broken;
  }
}

}  // namespace

SendQueue::Result SendQueue::sendPiece(int socket, const NSData& piece, uint64_t allowance) {
  const auto part = piece.subdataWithRange(0, std::min(piece.length(), allowance));
  const auto slice = part.slice();
  const ssize_t count = slice ? sendFilePart(socket, *slice) : sendBytes(socket, part.bytes());
  if (count < 0) return {outcomeOf(errno), 0};
  if (count == 0) return {Outcome::sourceEnded, 0};
  return {Outcome::drained, static_cast<uint64_t>(count)};
}

SendQueue::Result SendQueue::send(int socket, uint64_t allowance) {
  uint64_t sent = 0;
  while (!_pieces.empty()) {
    if (sent == allowance) return {Outcome::allowanceSpent, sent};
    auto& piece = _pieces.front();
    const auto result = sendPiece(socket, piece, allowance - sent);
    if (result.outcome != Outcome::drained) return {result.outcome, sent};
    sent += result.sent;
    if (result.sent == piece.length()) {
      _pieces.erase(_pieces.begin());
    } else {
      piece = piece.subdataWithRange(result.sent, piece.length() - result.sent);
    }
  }
  return {Outcome::drained, sent};
}

}  // namespace quaverly
