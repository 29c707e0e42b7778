#include "Host/Library/PartFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "Host/Library/Renaming.h"
#include "Host/Library/SystemFailure.h"

namespace quaverly::library {
namespace {

namespace fs = std::filesystem;

constexpr size_t pieceSize = 256 * 1024;
/// Is written as it is: copying it would cost more than another call.
constexpr size_t largePieceSize = 64 * 1024;
constexpr const char* ending = ".part";

std::string partsFolder(const std::string& libraryFolder) {
  return libraryFolder + "/.quaverly";
}

Failure cannotStore(const std::string& libraryFolder, int errorNumber) {
  return systemFailure("The song cannot be stored in " + libraryFolder, errorNumber);
}

MaybeFailure makeFolders(const std::string& libraryFolder) {
  std::error_code error;
  fs::create_directories(partsFolder(libraryFolder), error);
  if (error) return cannotStore(libraryFolder, error.value());
  return std::nullopt;
}

/// Whether the name still leads to this file: whoever removes abandoned files may have taken it for one
/// before it was locked.
bool isStillThere(const FileDescriptor& file) {
  struct stat attributes {};
  return fstat(file.get(), &attributes) == 0 && attributes.st_nlink > 0;
}

}  // namespace

PartFile::PartFile(std::string libraryFolder, std::string path, FileDescriptor file)
    : _libraryFolder(std::move(libraryFolder)), _path(std::move(path)), _file(std::move(file)) {
  _pending.reserve(pieceSize);
}

PartFile::PartFile(PartFile&& other) noexcept
    : _libraryFolder(std::move(other._libraryFolder)),
      _path(std::move(other._path)),
      _file(std::move(other._file)),
      _pending(std::move(other._pending)),
      _written(other._written),
      _exists(std::exchange(other._exists, false)) {}

PartFile::~PartFile() {
  if (_exists) unlink(_path.c_str());
}

Result<PartFile> PartFile::create(const std::string& libraryFolder) {
  for (unsigned number = 1;; ++number) {
    // Each time, since another program may have found the folder empty and removed it.
    if (auto failure = makeFolders(libraryFolder)) return *failure;
    std::string path = partsFolder(libraryFolder) + "/" + std::to_string(number) + ending;
    FileDescriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file && (errno == EEXIST || errno == ENOENT)) continue;
    if (!file) return cannotStore(libraryFolder, errno);
    // Where files cannot be locked, none of them is removed as abandoned either.
    flock(file.get(), LOCK_EX | LOCK_NB);
    if (isStillThere(file)) return PartFile(libraryFolder, std::move(path), std::move(file));
  }
}

MaybeFailure PartFile::reserve(uint64_t length) {
  if (length == 0 || fallocate(_file.get(), 0, 0, static_cast<off_t>(length)) == 0) return std::nullopt;
  // Not every file system can; then writing itself finds out.
  if (errno == EOPNOTSUPP || errno == ENOSYS || errno == EINTR) return std::nullopt;
  return failure(errno);
}

MaybeFailure PartFile::append(std::span<const std::byte> bytes) {
  const bool isLarge = bytes.size() >= largePieceSize;
  if (isLarge || _pending.size() + bytes.size() > pieceSize) {
    if (auto failure = write(_pending)) return failure;
    _pending.clear();
  }
  if (isLarge) return write(bytes);
  _pending.insert(_pending.end(), bytes.begin(), bytes.end());
  return std::nullopt;
}

MaybeFailure PartFile::write(std::span<const std::byte> bytes) {
  if (const int error = _file.writeAll(bytes)) return failure(error);
  _written += bytes.size();
  return std::nullopt;
}

MaybeFailure PartFile::finish() {
  if (auto failure = write(_pending)) return failure;
  _pending.clear();
  if (_file.length() == _written || ftruncate(_file.get(), static_cast<off_t>(_written)) == 0)
    return std::nullopt;
  return failure(errno);
}

MaybeFailure PartFile::flush() {
  if (fdatasync(_file.get()) == 0) return std::nullopt;
  return failure(errno);
}

Result<PartFile::Placing> PartFile::placeAs(const std::string& path) {
  const int error = renameWithoutReplacing(_path, path, partsFolder(_libraryFolder));
  if (error == EEXIST) return Placing::nameTaken;
  if (error != 0) return failure(error);
  _exists = false;
  return Placing::placed;
}

Failure PartFile::failure(int errorNumber) const {
  return cannotStore(_libraryFolder, errorNumber);
}

void PartFile::removeAbandoned(const std::string& libraryFolder) {
  const std::string folder = partsFolder(libraryFolder);
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (entry->path().extension() != ending) continue;
    const auto file = FileDescriptor::openForReading(entry->path());
    if (file && flock(file.get(), LOCK_EX | LOCK_NB) == 0) unlink(entry->path().c_str());
  }
  rmdir(folder.c_str());
}

}  // namespace quaverly::library
