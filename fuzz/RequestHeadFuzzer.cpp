#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Platform/CFNetwork/CFHTTPMessage.h"

using namespace quaverly;

/// The first byte says in pieces of which size the rest arrives. However it is cut, the same must come of it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  if (size == 0) return 0;
  const std::string_view head(reinterpret_cast<const char*>(bytes) + 1, size - 1);
  const size_t pieceSize = bytes[0] + size_t{1};

  const auto whole = CFHTTPMessageCreateEmpty();
  const bool isWholeTaken = CFHTTPMessageAppendBytes(whole, head);
  const auto cut = CFHTTPMessageCreateEmpty();
  bool isCutTaken = true;
  for (size_t at = 0; at < head.size(); at += pieceSize) {
    isCutTaken = CFHTTPMessageAppendBytes(cut, head.substr(at, pieceSize)) && isCutTaken;
  }
  if (head.empty()) return 0;
  if (isWholeTaken != isCutTaken) std::abort();
  if (isWholeTaken && CFHTTPMessageIsHeaderComplete(whole) != CFHTTPMessageIsHeaderComplete(cut))
    std::abort();
  if (CFHTTPMessageCopyRequestURL(whole) != CFHTTPMessageCopyRequestURL(cut)) std::abort();
  if (CFHTTPMessageCopyAllHeaderFields(whole) != CFHTTPMessageCopyAllHeaderFields(cut)) std::abort();
  return 0;
}
