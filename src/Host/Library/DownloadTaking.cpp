#include "Host/Library/DownloadTaking.h"

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/Foundation/NSURL.h"

namespace quaverly::library {
namespace {

constexpr const char* mediaAsset = "media";

std::string assetURLOf(const SSDownload& download) {
  const auto asset = download.assetForType(mediaAsset);
  const auto* request = asset ? asset->URLRequest() : nullptr;
  return request ? request->URL().absoluteString() : "";
}

}  // namespace

DownloadRecord recordOf(const SSDownload& download) {
  DownloadRecord record;
  if (download.metadata()) record.metadata = DownloadMetadata::of(*download.metadata());
  record.assetURL = assetURLOf(download);
  record.devicePath = devicePathIn(record.assetURL).value_or("");
  if (record.devicePath.empty()) return record;
  const auto location = Device::current().mounts.resolve(record.devicePath);
  if (location) record.sourcePath = location->hostPath;
  return record;
}

Result<DownloadRecord> takeOver(DownloadRecord record, Catalogue& catalogue, const ArtworkStore& store) {
  const auto artwork = artworkOf(record.metadata);
  record.artworkKind = artwork.kind;
  // Alone of all who write, so that nobody takes the copy of the cover for one that no download needs.
  const auto failure = catalogue.transact([&]() -> MaybeFailure {
    if (artwork.kind == ArtworkChange::Kind::replace) {
      auto copy = store.keep(artwork.image);
      if (!copy) return copy.failure();
      record.artwork = std::move(*copy);
    }
    const auto id = catalogue.add(record);
    if (!id) return id.failure();
    record.id = *id;
    return std::nullopt;
  });
  if (failure) return *failure;
  return record;
}

std::optional<std::string> devicePathIn(const std::string& assetURL) {
  const auto url = NSURL::URLWithString(assetURL);
  const auto query = url ? url->query() : std::nullopt;
  return query ? NSStringByRemovingPercentEncoding(*query) : std::nullopt;
}

std::string withDevicePath(const std::string& assetURL, std::string_view devicePath) {
  return assetURL.substr(0, assetURL.find('?')) + "?" + NSStringByAddingPercentEscapesForQuery(devicePath);
}

}  // namespace quaverly::library
