#include "Platform/AVFoundation/LazyBytes.h"

#include <fcntl.h>

#include <algorithm>

#include "Platform/AVFoundation/FileBytes.h"

namespace quaverly::tags {

LazyBytes::LazyBytes(int descriptor, uint64_t offset, size_t length)
    : _descriptor(descriptor),
      _offset(offset),
      _storage(reusedStorage(length)),
      _length(length),
      _isLoaded((length + pageLength - 1) / pageLength) {}

void LazyBytes::load(Bytes part) {
  if (part.empty()) return;
  const auto begin = static_cast<size_t>(part.data() - _storage.get());
  const size_t end = (begin + part.size() - 1) / pageLength + 1;
  for (size_t page = begin / pageLength; page < end; ++page) {
    if (_isLoaded[page]) continue;
    size_t behind = page;
    while (behind < end && !_isLoaded[behind]) _isLoaded[behind++] = true;
    loadPages(page, behind);
    page = behind - 1;
  }
}

void LazyBytes::loadPages(size_t first, size_t end) {
  const size_t offset = first * pageLength;
  const auto pages =
      std::span(_storage.get(), _length).subspan(offset, std::min(end * pageLength, _length) - offset);
  const size_t count = readAt(_descriptor, _offset + offset, pages);
  std::ranges::fill(pages.subspan(count), uint8_t{0});
}

std::span<uint8_t> LazyBytes::edit() {
  load(bytes());
  _isEdited = true;
  return {_storage.get(), _length};
}

NSData LazyBytes::data(Bytes part) {
  auto inFile = _isEdited ? std::nullopt : dataInFile(part);
  if (inFile) return *inFile;
  load(part);
  return NSData(_storage, std::as_bytes(part));
}

std::optional<NSData> LazyBytes::dataInFile(Bytes part) {
  if (!_file) {
    const int duplicate = fcntl(_descriptor, F_DUPFD_CLOEXEC, 0);
    if (duplicate >= 0) _file = NSData::dataWithDescriptor(duplicate);
  }
  const uint64_t begin = _offset + static_cast<uint64_t>(part.data() - _storage.get());
  if (!_file || begin + part.size() > _file->length()) return std::nullopt;
  return _file->subdataWithRange(begin, part.size());
}

}  // namespace quaverly::tags
