#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Host/Library/CatalogueRecords.h"
#include "Host/Library/SongTags.h"
#include "Platform/StoreServices/SSDownload.h"

namespace quaverly::library {

/// A download as it is now, with where its song lies; its number and its artwork are the caller's to set.
DownloadRecord recordOf(const SSDownload& download);

/// The device path in the query of an asset's URL; nothing when there is none.
std::optional<std::string> devicePathIn(const std::string& assetURL);
/// The same URL for another device path.
std::string withDevicePath(const std::string& assetURL, std::string_view devicePath);

}  // namespace quaverly::library
