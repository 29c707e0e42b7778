#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSURL.h"
#include "Platform/Foundation/RemoteData.h"

namespace quaverly {
namespace {

std::optional<NSData> dataOfFile(const NSURL& url, uint64_t mostBytes) {
  const std::string host = url.host().value_or("");
  const auto path = url.path();
  if (!path || !(host.empty() || host == "localhost")) return std::nullopt;
  const auto file = NSData::dataWithContentsOfFile(*path);
  if (!file || file->length() > mostBytes) return std::nullopt;
  return NSData(file->text());
}

}  // namespace

std::optional<NSData> NSData::dataWithContentsOfURL(const NSURL& url, const NSDataLimits& limits) {
  const auto scheme = url.scheme();
  if (scheme == "file") return dataOfFile(url, limits.fileBytes);
  if (scheme == "http" || scheme == "https") return remoteData(url.absoluteString(), limits);
  return std::nullopt;
}

}  // namespace quaverly
