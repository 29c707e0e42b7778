#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Host/Library/DownloadMetadata.h"
#include "Host/Library/SongTags.h"
#include "Host/Library/TagRewriter.h"
#include "Platform/Device/Clock.h"

namespace quaverly::library {

/// Numbers downloads in the order in which they were added, from 1. Never used again.
using DownloadID = int64_t;

enum class DownloadState {
  queued,     ///< waits for its turn
  fetching,   ///< its bytes are on their way into a hidden file
  placing,    ///< whole and on the disk, about to get its name in the library
  filed,      ///< a song of the library
  duplicate,  ///< not filed, because the library has the same song already
  failed,     ///< not filed; can be tried again
};

/// "queued", "fetching", "placing", "filed", "duplicate", "failed".
const char* nameOf(DownloadState state);
std::optional<DownloadState> downloadStateNamed(std::string_view name);

/// Whether nothing more happens to a download in this state by itself.
bool isFinal(DownloadState state);

/// One download, from its adding to what became of it. Paths are absolute and bytes.
struct DownloadRecord {
  DownloadID id = 0;
  DownloadState state = DownloadState::queued;
  std::string reason;      ///< why it failed; of a filed or duplicate song what else there is to say; or ""
  std::string sourcePath;  ///< the song on the host; "" when the download's path leads nowhere
  std::string devicePath;
  std::string assetURL;
  std::string artwork;  ///< the copy of its cover, as `ArtworkStore` names it; "" when there is none
  ArtworkChange::Kind artworkKind = ArtworkChange::Kind::remove;
  DownloadMetadata metadata;
  uint64_t bytes = 0;       ///< the source's length; 0 until it was measured
  std::string libraryPath;  ///< the filed song, or for a duplicate the song that is there already; or ""
  Clock::Date added{};
  std::optional<Clock::Date> ended;
};

/// A song that was filed.
struct SongRecord {
  int64_t id = 0;    ///< in the order of filing; 0 before that
  std::string path;  ///< absolute
  SongTags tags;     ///< as a reader finds them
  ContentHash audio;
  std::string cover;  ///< tells covers apart; "" for none
  uint64_t size = 0;
  Clock::Date filed{};
  DownloadID download = 0;
};

}  // namespace quaverly::library
