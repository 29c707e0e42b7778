#pragma once

#include <string>
#include <vector>

#include "Platform/StoreServices/SSDownloadManager.h"

namespace quaverly::test {

/// Stands behind the download manager and keeps the downloads that are handed over, as the real service does.
/// They complete when told, and at the end.
class KeptDownloads : public SSDownloadService {
 public:
  KeptDownloads();
  ~KeptDownloads() override;
  void addDownloads(const std::vector<Ref<SSDownload>>& downloads) override;

  /// Ends the lives of the downloads, which hold themselves until then.
  void completeAll();
  /// The metadata of one, a line for each value that was set: its name, and the value as text, texts in
  /// quotes and URLs in angle brackets.
  std::vector<std::string> lines(size_t index) const;

  std::vector<Ref<SSDownload>> kept;
  /// How many came at once, each time.
  std::vector<size_t> batches;
};

}  // namespace quaverly::test
