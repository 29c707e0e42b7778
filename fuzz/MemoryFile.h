#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace quaverly::fuzz {

/// A file in memory, for parsers that read from a descriptor.
class MemoryFile {
 public:
  MemoryFile() : _descriptor(memfd_create("input", MFD_CLOEXEC)) {}
  ~MemoryFile() { close(_descriptor); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  int descriptor() const { return _descriptor; }

  void setContents(std::string_view bytes) {
    const auto length = static_cast<off_t>(bytes.size());
    if (ftruncate(_descriptor, length) != 0 || pwrite(_descriptor, bytes.data(), bytes.size(), 0) != length)
      std::abort();
  }

 private:
  int _descriptor;
};

}  // namespace quaverly::fuzz
