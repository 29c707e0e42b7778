#include "Platform/Foundation/NSData.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>
#include <mutex>
#include <utility>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSDataFile.h"

namespace quaverly {

NSData::File::~File() {
  ::close(_descriptor);
}

std::optional<size_t> NSData::File::read(uint64_t offset, std::span<std::byte> buffer) const {
  size_t count = 0;
  while (count < buffer.size()) {
    const auto rest = buffer.subspan(count);
    const ssize_t got = ::pread(_descriptor, rest.data(), rest.size(), static_cast<off_t>(offset + count));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (got == 0) break;
    count += static_cast<size_t>(got);
  }
  return count;
}

/// A part of a file, and its bytes once somebody has asked for them; shared by all copies of the data.
class NSData::FileContents {
 public:
  explicit FileContents(Slice slice) : _slice(std::move(slice)) {}

  const Slice& slice() const { return _slice; }

  std::span<const std::byte> bytes() const {
    std::call_once(_read, [this] { read(); });
    return _bytes;
  }

 private:
  void read() const {
    auto bytes = std::make_unique_for_overwrite<std::byte[]>(_slice.length);
    const auto count = _slice.file->read(_slice.offset, {bytes.get(), _slice.length});
    _storage = std::move(bytes);
    _bytes = {_storage.get(), count.value_or(0)};
  }

  Slice _slice;
  mutable std::once_flag _read;
  mutable std::unique_ptr<std::byte[]> _storage;
  mutable std::span<const std::byte> _bytes;
};

NSData::NSData(std::string bytes) : _length(bytes.size()) {
  auto owner = std::make_shared<const std::string>(std::move(bytes));
  _bytes = reinterpret_cast<const std::byte*>(owner->data());
  _owner = std::move(owner);
}

NSData::NSData(std::string_view bytes) : NSData(std::string(bytes)) {}

NSData::NSData(std::shared_ptr<const void> owner, std::span<const std::byte> bytes)
    : _length(bytes.size()), _owner(std::move(owner)), _bytes(bytes.data()) {}

NSData::NSData(Slice slice)
    : _length(slice.length), _fileContents(std::make_shared<const FileContents>(std::move(slice))) {}

std::optional<NSData> NSData::dataWithContentsOfFile(std::string_view devicePath) {
  const auto location = Device::current().mounts.resolve(devicePath);
  if (!location) return std::nullopt;
  // Without waiting: a pipe that nobody writes to must not hang the reader.
  const int descriptor = ::open(location->hostPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0) return std::nullopt;
  return dataWithDescriptor(descriptor);
}

std::optional<NSData> NSData::dataWithDescriptor(int descriptor) {
  auto file = std::make_shared<const File>(descriptor);
  struct stat status;
  if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return NSData(Slice{std::move(file), 0, static_cast<uint64_t>(status.st_size)});
}

NSData NSData::subdataWithRange(uint64_t location, uint64_t length) const {
  assert(location <= _length && length <= _length - location);
  if (const auto whole = slice()) return NSData(Slice{whole->file, whole->offset + location, length});
  return NSData(_owner, {_bytes + location, length});
}

std::span<const std::byte> NSData::bytes() const {
  return _fileContents ? _fileContents->bytes() : std::span(_bytes, _length);
}

std::string_view NSData::text() const {
  const auto all = bytes();
  return {reinterpret_cast<const char*>(all.data()), all.size()};
}

std::optional<NSData::Slice> NSData::slice() const {
  if (!_fileContents) return std::nullopt;
  return _fileContents->slice();
}

}  // namespace quaverly
