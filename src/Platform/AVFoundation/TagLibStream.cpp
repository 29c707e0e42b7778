#include "Platform/AVFoundation/TagLibStream.h"

#include <sys/types.h>
#include <taglib/tiostream.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "Platform/AVFoundation/FileBytes.h"

namespace quaverly::tags {
namespace {

using TagLib::ByteVector;

class ReadingStream : public TagLib::IOStream {
 public:
  ReadingStream(int descriptor, uint64_t offset, uint64_t budget)
      : _descriptor(descriptor), _offset(offset), _budget(budget) {}

  TagLib::FileName name() const override { return ""; }
  bool readOnly() const override { return true; }
  bool isOpen() const override { return true; }
  long tell() const override { return _position; }
  long length() override {
    const uint64_t whole = lengthOfFile(_descriptor).value_or(0);
    return static_cast<long>(whole > _offset ? whole - _offset : 0);
  }

  ByteVector readBlock(unsigned long length) override {
    const auto there = static_cast<uint64_t>(std::max(0L, this->length() - _position));
    const uint64_t wanted = std::min({uint64_t{length}, there, _budget});
    ByteVector block(static_cast<unsigned>(wanted));
    const size_t count = read(static_cast<uint64_t>(_position), block);
    block.resize(static_cast<unsigned>(count));
    _position += static_cast<long>(count);
    _budget -= count;
    return block;
  }

  void seek(long offset, Position from) override {
    const long base = from == Beginning ? 0 : from == Current ? _position : length();
    _position = std::max(0L, base + offset);
  }

  void writeBlock(const ByteVector&) override {}
  void insert(const ByteVector&, unsigned long, unsigned long) override {}
  void removeBlock(unsigned long, unsigned long) override {}
  void truncate(long) override {}

 protected:
  size_t read(uint64_t position, ByteVector& block) const {
    return readAt(_descriptor, _offset + position, {reinterpret_cast<uint8_t*>(block.data()), block.size()});
  }
  int descriptor() const { return _descriptor; }
  void advance(long by) { _position += by; }

 private:
  int _descriptor;
  uint64_t _offset;
  uint64_t _budget;
  long _position = 0;
};

/// Writes as well. After a failed write it is no longer open, and ignores what is still asked of it.
class WritingStream : public ReadingStream {
 public:
  using ReadingStream::ReadingStream;

  bool readOnly() const override { return false; }
  bool isOpen() const override { return !_failed; }

  void writeBlock(const ByteVector& data) override {
    write(tell(), data);
    advance(static_cast<long>(data.size()));
  }

  void insert(const ByteVector& data, unsigned long start, unsigned long replace) override {
    move(static_cast<long>(start + replace), static_cast<long>(start + data.size()));
    write(static_cast<long>(start), data);
    seek(static_cast<long>(start + data.size()), Beginning);
  }

  void removeBlock(unsigned long start, unsigned long length) override {
    move(static_cast<long>(start + length), static_cast<long>(start));
  }

  void truncate(long length) override {
    if (!_failed && ftruncate(descriptor(), length) != 0) _failed = true;
  }

 private:
  void write(long position, const ByteVector& data) {
    for (unsigned done = 0; done < data.size() && !_failed;) {
      const ssize_t count = pwrite(descriptor(), data.data() + done, data.size() - done, position + done);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) _failed = true;
      done += static_cast<unsigned>(std::max<ssize_t>(count, 0));
    }
  }

  /// Moves everything from `from` on to `to`; the file's end moves along.
  void move(long from, long to) {
    const long end = length();
    if (from == to || from > end) return;
    constexpr long piece = 1 << 18;
    const long pieces = (end - from + piece - 1) / piece;
    for (long i = 0; i < pieces && !_failed; ++i) {
      // Towards the end the last piece goes first, so that none is overwritten before it was moved.
      const long at = (to > from ? pieces - 1 - i : i) * piece;
      ByteVector data(static_cast<unsigned>(std::min(piece, end - from - at)));
      if (read(static_cast<uint64_t>(from + at), data) != data.size()) _failed = true;
      write(to + at, data);
    }
    if (to < from) truncate(end - (from - to));
  }

  bool _failed = false;
};

}  // namespace

std::unique_ptr<TagLib::IOStream> makeTagLibStream(int descriptor, StreamAccess access, uint64_t offset,
                                                   uint64_t budget) {
  if (access == StreamAccess::read) return std::make_unique<ReadingStream>(descriptor, offset, budget);
  return std::make_unique<WritingStream>(descriptor, offset, budget);
}

}  // namespace quaverly::tags
