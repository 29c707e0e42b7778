#include "Host/Library/CatalogueRecords.h"

namespace quaverly::library {

const char* nameOf(DownloadState state) {
  switch (state) {
    case DownloadState::queued:
      return "queued";
    case DownloadState::fetching:
      return "fetching";
    case DownloadState::placing:
      return "placing";
    case DownloadState::filed:
      return "filed";
    case DownloadState::duplicate:
      return "duplicate";
    case DownloadState::failed:
      return "failed";
  }
  return "";
}

std::optional<DownloadState> downloadStateNamed(std::string_view name) {
  using enum DownloadState;
  for (const auto state : {queued, fetching, placing, filed, duplicate, failed}) {
    if (name == nameOf(state)) return state;
  }
  return std::nullopt;
}

bool isFinal(DownloadState state) {
  return state == DownloadState::filed || state == DownloadState::duplicate || state == DownloadState::failed;
}

}  // namespace quaverly::library
