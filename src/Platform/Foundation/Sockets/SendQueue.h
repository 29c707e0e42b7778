#pragma once

#include <cstdint>
#include <vector>

#include "Platform/Foundation/NSData.h"

namespace quaverly {

/// What waits to go out on a connection: bytes in memory, and parts of files that the kernel sends by itself.
class SendQueue {
 public:
  enum class Outcome {
    drained,         ///< everything has gone out
    full,            ///< the connection takes no more for now
    allowanceSpent,  ///< it would take more, but this turn has had its share
    sourceEnded,     ///< a file has become shorter, or cannot be read any more
    broken           ///< the peer is gone
  };
  struct Result {
    Outcome outcome;
    uint64_t sent;
  };

  void append(const NSData& data) { _pieces.push_back(data); }
  void clear() { _pieces.clear(); }
  bool isEmpty() const { return _pieces.empty(); }

  /// Sends what `socket`, which does not block, takes, but no more than `allowance` bytes.
  Result send(int socket, uint64_t allowance);

 private:
  Result sendPiece(int socket, const NSData& piece, uint64_t allowance);

  std::vector<NSData> _pieces;
};

}  // namespace quaverly
