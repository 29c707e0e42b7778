#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Host/Library/FileDescriptor.h"
#include "Host/Library/Result.h"

namespace quaverly::library {

/// A song that is not whole yet: a file in a hidden folder of the library, on the library's own file system
/// and without an ending that a player would read. It is removed with this object unless it was placed.
class PartFile {
 public:
  /// Makes the library folder where it is missing.
  static Result<PartFile> create(const std::string& libraryFolder);
  PartFile(PartFile&&) noexcept;
  PartFile& operator=(PartFile&&) = delete;
  ~PartFile();

  /// Asks the file system for room, so that a full disk shows before anything is fetched.
  MaybeFailure reserve(uint64_t length);
  /// Appends, in large pieces; a failure may show only later.
  MaybeFailure append(std::span<const std::byte> bytes);
  /// Writes what was appended and cuts what was reserved beyond it.
  MaybeFailure finish();
  /// Returns when the bytes are safe on the disk.
  MaybeFailure flush();

  enum class Placing { placed, nameTaken };
  /// Gives the file its name, never in place of another.
  Result<Placing> placeAs(const std::string& path);

  int descriptor() const { return _file.get(); }
  uint64_t length() const { return _file.length(); }
  const std::string& path() const { return _path; }

  /// Removes the part files that nobody writes any more, and their folder when it is empty.
  static void removeAbandoned(const std::string& libraryFolder);

 private:
  PartFile(std::string libraryFolder, std::string path, FileDescriptor file);
  MaybeFailure write(std::span<const std::byte> bytes);
  Failure failure(int errorNumber) const;

  std::string _libraryFolder;
  std::string _path;
  FileDescriptor _file;
  std::vector<std::byte> _pending;
  uint64_t _written = 0;
  bool _exists = true;
};

}  // namespace quaverly::library
