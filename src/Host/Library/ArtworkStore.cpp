#include "Host/Library/ArtworkStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string_view>

#include "Host/Library/ContentHasher.h"
#include "Host/Library/FileDescriptor.h"
#include "Host/Library/SystemFailure.h"
#include "Platform/Foundation/NSURL.h"

namespace quaverly::library {
namespace {

/// Larger pictures fit no player, and hardly a tag.
constexpr uint64_t largestImage = uint64_t{64} << 20;

constexpr std::string_view ending = ".image";

bool isEmbeddable(std::string_view bytes) {
  constexpr std::array<std::string_view, 2> starts = {"\xff\xd8\xff", "\x89PNG\r\n\x1a\n"};
  return std::any_of(starts.begin(), starts.end(), [&](auto start) { return bytes.starts_with(start); });
}

std::optional<NSData> imageAt(const std::string& url) {
  const auto parsed = NSURL::URLWithString(url);
  const auto path = parsed && parsed->scheme() == "file" ? parsed->path() : std::nullopt;
  auto image = path ? NSData::dataWithContentsOfFile(*path) : std::nullopt;
  if (!image || image->length() > largestImage || !isEmbeddable(image->text())) return std::nullopt;
  return image;
}

}  // namespace

ArtworkChange artworkOf(const DownloadMetadata& metadata) {
  const auto& url = metadata.fullSizeImageURL;
  if (!url || url->empty()) return {ArtworkChange::Kind::remove, {}};
  if (auto image = imageAt(*url)) return {ArtworkChange::Kind::replace, std::move(*image)};
  return {ArtworkChange::Kind::keep, {}};
}

ArtworkStore::ArtworkStore(std::string dataFolder) : _folder(std::move(dataFolder) + "/artwork") {}

std::string ArtworkStore::path(const std::string& name) const {
  return _folder + "/" + name;
}

Result<std::string> ArtworkStore::keep(const NSData& image) const {
  const auto bytes = image.bytes();
  const std::string name = contentHash(bytes).hex().append(ending);
  if (access(path(name).c_str(), F_OK) == 0 && this->image(name)) return name;
  const auto fail = [](int error) {
    return systemFailure("The cover cannot be kept in the data folder", error);
  };
  if (mkdir(_folder.c_str(), 0700) != 0 && errno != EEXIST) return fail(errno);
  // A name of its own until it is whole, so that a killed program leaves no torn copy.
  std::string part = path(name) + ".XXXXXX";
  FileDescriptor file(mkostemp(part.data(), O_CLOEXEC));
  if (!file) return fail(errno);
  int error = file.writeAll(bytes);
  if (error == 0 && rename(part.c_str(), path(name).c_str()) != 0) error = errno;
  if (error == 0) return name;
  unlink(part.c_str());
  return fail(error);
}

Result<NSData> ArtworkStore::image(const std::string& name) const {
  auto image = NSData::dataWithDescriptor(FileDescriptor::openForReading(path(name)).release());
  if (image && contentHash(image->bytes()).hex().append(ending) == name) return *image;
  return Failure{"The copy of the song's cover was lost. Import the song again."};
}

void ArtworkStore::remove(const std::string& name) const {
  if (!name.empty()) unlink(path(name).c_str());
}

std::vector<std::string> ArtworkStore::names() const {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(_folder, error), end; !error && entry != end;
       entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  return names;
}

Result<ArtworkChange> artworkOf(const DownloadRecord& record, const ArtworkStore& store) {
  if (record.artworkKind != ArtworkChange::Kind::replace) return ArtworkChange{record.artworkKind, {}};
  auto image = store.image(record.artwork);
  if (!image) return image.failure();
  return ArtworkChange{record.artworkKind, std::move(*image)};
}

}  // namespace quaverly::library
