#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <set>
#include <string>
#include <vector>

#include "Host/Library/DownloadService.h"
#include "Host/Page/PageDelegate.h"

namespace quaverly::page {

/// Tells pages what the host's own panels show, the downloads and the library: all that fits when a page
/// connects, and then what changes, a few times a second. Knows nothing of the device's screens. Messages of
/// theirs pass it by. Main thread.
class Panels : public PageDelegate, public library::DownloadObserver {
 public:
  static constexpr size_t downloadsShown = 200;
  static constexpr size_t songsPerMessage = 200;
  /// How long changes are gathered before the pages hear of them.
  static constexpr std::chrono::milliseconds gathering{100};

  /// `service` must outlive it.
  Panels(library::DownloadService& service, std::string libraryFolder);
  ~Panels() override;
  Panels(const Panels&) = delete;
  Panels& operator=(const Panels&) = delete;

  void connected(PageConnection& page) override;
  void received(PageConnection& page, std::string_view text) override;
  void disconnected(PageConnection& page) override;

  void downloadAdded(const library::DownloadRecord& record) override;
  void downloadStarted(const library::DownloadRecord& record) override;
  void downloadProgressed(library::DownloadID id, const library::DownloadProgress& progress) override;
  void downloadEnded(const library::DownloadRecord& record) override;
  void serviceWaits(const std::string& why) override;

 private:
  void retry(PageConnection& page, library::DownloadID id);
  void sendSongsBefore(PageConnection& page, int64_t id, bool isWhole);
  void change(library::DownloadID id);
  void tellChanges();
  void tellChangedDownloads();
  void tellNewSongs();
  void broadcast(const nlohmann::ordered_json& message);
  nlohmann::ordered_json itemOf(const library::DownloadRecord& record) const;

  library::DownloadService& _service;
  std::string _libraryFolder;
  std::vector<PageConnection*> _pages;
  std::map<library::DownloadID, library::DownloadProgress> _progress;  // of those under way
  std::set<library::DownloadID> _changed;                              // since the pages last heard
  std::set<library::DownloadID> _filed;                                // likewise
  std::string _notice;                                                 // why nothing goes on
  std::unique_ptr<Clock::Alarm> _gathering;
};

}  // namespace quaverly::page
