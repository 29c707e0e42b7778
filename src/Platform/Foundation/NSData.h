#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quaverly {

class NSURL;

/// How much a resource may cost.
struct NSDataLimits {
  /// Of a file on the device.
  uint64_t fileBytes = uint64_t{512} << 20;
  /// Of what comes over the network, and how long that may take altogether.
  uint64_t remoteBytes = uint64_t{64} << 20;
  std::chrono::milliseconds remoteTime = std::chrono::seconds(30);
};

/// Bytes that never change, cheap to copy and to share between threads.
///
/// Data made from a file may stay backed by it: the length is fixed when it is made, the bytes are read when
/// somebody asks for them. `NSFileHandle` sends such data without copying it through user memory.
class NSData {
 public:
  /// An open file as the place where bytes lie: its descriptor, owned by this object.
  class File;
  struct Slice {
    std::shared_ptr<const File> file;
    uint64_t offset;
    uint64_t length;
  };

  NSData() = default;
  explicit NSData(std::string bytes);
  explicit NSData(std::string_view bytes);
  explicit NSData(const char* bytes) : NSData(std::string_view(bytes)) {}
  /// Shares bytes that somebody else made: `bytes` must stay valid while `owner` lives.
  NSData(std::shared_ptr<const void> owner, std::span<const std::byte> bytes);

  /// The regular file at a device path, open and measured; nothing when it is none or cannot be opened.
  static std::optional<NSData> dataWithContentsOfFile(std::string_view devicePath);
  /// The same for a descriptor's regular file; takes the descriptor over.
  static std::optional<NSData> dataWithDescriptor(int descriptor);

  /// What a URL leads to, whole and in memory: a file of this device ("file", without a host or with
  /// "localhost"), or what a server sends ("http", "https", also by way of a few redirects to such, over no
  /// proxy). Nothing for other URLs, when it cannot be had, when a server answers with anything but success,
  /// and when it costs more than the limits allow. Blocks; any thread but the main one.
  static std::optional<NSData> dataWithContentsOfURL(const NSURL& url, const NSDataLimits& limits = {});

  uint64_t length() const { return _length; }

  /// A part of the bytes; the range must lie within them.
  NSData subdataWithRange(uint64_t location, uint64_t length) const;

  /// The bytes in memory, read on first use when a file backs them and kept by this object. Shorter than
  /// `length` when the file shrank meanwhile. Valid while this object or a copy of it lives.
  std::span<const std::byte> bytes() const;
  std::string_view text() const;

  /// Where in a file the bytes lie, when a file backs them.
  std::optional<Slice> slice() const;

  /// Replaces the file at a device path by these bytes: written beside it and renamed into place, so that a
  /// reader sees the old file or the new one. False when that fails, and the log says why; nothing
  /// half-written remains.
  [[nodiscard]] bool writeToFileAtomically(std::string_view devicePath) const;

 private:
  class FileContents;
  explicit NSData(Slice slice);

  uint64_t _length = 0;
  std::shared_ptr<const FileContents> _fileContents;  // when a file backs the bytes, else
  std::shared_ptr<const void> _owner;                 // of
  const std::byte* _bytes = nullptr;
};

}  // namespace quaverly
