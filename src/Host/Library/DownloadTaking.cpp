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

std::optional<std::string> devicePathIn(const std::string& assetURL) {
  const auto url = NSURL::URLWithString(assetURL);
  const auto query = url ? url->query() : std::nullopt;
  return query ? NSStringByRemovingPercentEncoding(*query) : std::nullopt;
}

std::string withDevicePath(const std::string& assetURL, std::string_view devicePath) {
  return assetURL.substr(0, assetURL.find('?')) + "?" + NSStringByAddingPercentEscapesForQuery(devicePath);
}

}  // namespace quaverly::library
