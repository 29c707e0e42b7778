#pragma once

#include <cstdint>
#include <memory>

namespace TagLib {
class IOStream;
}

namespace quaverly::tags {

/// A stream for TagLib over a descriptor that stays the caller's: it has no name that TagLib could judge the
/// content by or open a second time, and works at positions of its own.
enum class StreamAccess { read, readAndWrite };

/// More than the tags of any song; what a damaged or hostile file asks for beyond it reads as its end.
inline constexpr uint64_t readingBudget = uint64_t{32} << 20;

/// The file from `offset` on. `budget` is how many bytes may be read from it altogether.
std::unique_ptr<TagLib::IOStream> makeTagLibStream(int descriptor, StreamAccess access, uint64_t offset = 0,
                                                   uint64_t budget = readingBudget);

}  // namespace quaverly::tags
