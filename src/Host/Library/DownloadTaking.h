#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Host/Library/ArtworkStore.h"
#include "Host/Library/Catalogue.h"
#include "Host/Library/CatalogueRecords.h"
#include "Host/Library/Result.h"
#include "Host/Library/SongTags.h"
#include "Platform/StoreServices/SSDownload.h"

namespace quaverly::library {

/// A download as it is now, with where its song lies; its number and its artwork are the caller's to set.
DownloadRecord recordOf(const SSDownload& download);

/// Takes over all that a download needs before its giver goes on: a copy of its cover, and its row in the
/// catalogue. Returns the record with its number.
Result<DownloadRecord> takeOver(DownloadRecord record, Catalogue& catalogue, const ArtworkStore& store);

/// The device path in the query of an asset's URL; nothing when there is none.
std::optional<std::string> devicePathIn(const std::string& assetURL);
/// The same URL for another device path.
std::string withDevicePath(const std::string& assetURL, std::string_view devicePath);

}  // namespace quaverly::library
