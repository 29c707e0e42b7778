#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "Host/Library/CatalogueRecords.h"
#include "Host/Library/DownloadObserver.h"

// What the panels show, as docs/page-protocol.md writes it.
namespace quaverly::page {

nlohmann::ordered_json downloadItem(const library::DownloadRecord& record,
                                    const library::DownloadProgress& progress);
nlohmann::ordered_json songItem(const library::SongRecord& song, const std::string& libraryFolder);

}  // namespace quaverly::page
