#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Host/Instances/LineChannel.h"
#include "Host/Library/ArtworkStore.h"
#include "Host/Library/Catalogue.h"
#include "Host/Library/ImportService.h"
#include "Host/Library/LibrarySettings.h"

namespace quaverly::instances {

/// Another instance that serves a page, and where.
struct ServingPage {
  std::string address;
  int process = 0;
};

/// Asks the instance that serves on a data folder where its page is, and gives one that starts the time to
/// listen; nothing when none answers. Runs the main loop meanwhile.
std::optional<ServingPage> askForPage(const std::string& dataFolder);

/// Stands behind the download manager and hands each download to the instance that serves on the same data
/// folder: writes it into the catalogue, as that one would, and lets it go on from there. Whatever becomes of
/// either program, the catalogue knows.
class ServingInstance : public library::ImportService {
 public:
  /// The instance that serves; null when there is none, or it hangs up because it ends. Fails when it does
  /// not answer, and when it files into another library. Runs the main loop meanwhile.
  static library::Result<std::unique_ptr<ServingInstance>> find(const library::LibrarySettings& settings);

  void addDownloads(const std::vector<Ref<SSDownload>>& downloads) override;

  Place place() const override { return Place::elsewhere; }
  library::DownloadID latestDownload() const override { return _latest; }
  /// The other instance has done so.
  void resumeInterrupted() override {}
  /// Waits no longer.
  void stop() override;
  bool isIdle() const override { return _pending.empty() && _refused == 0; }

  void addObserver(library::DownloadObserver* observer) override { _observers.push_back(observer); }
  void removeObserver(library::DownloadObserver* observer) override { std::erase(_observers, observer); }

 private:
  ServingInstance(const library::LibrarySettings& settings, library::Catalogue catalogue);

  library::MaybeFailure begin(std::shared_ptr<Descriptor> connection, const std::string& library);
  void hear(const std::string& line);
  void handOver(const Ref<SSDownload>& download);
  void refuse(const Ref<SSDownload>& download, const library::Failure& failure);
  library::DownloadRecord recordNow(library::DownloadID id);
  void end(const library::DownloadRecord& record);
  void lose();
  std::vector<library::DownloadRecord> recordsPending();
  void later(std::function<void()> block);
  void tell(const std::function<void(library::DownloadObserver&)>& event);

  library::Catalogue _catalogue;
  library::ArtworkStore _artwork;
  std::unique_ptr<LineChannel> _channel;
  std::string _greeting;  // the first line
  bool _isOver = false;   // nothing more is waited for
  std::vector<library::DownloadObserver*> _observers;
  std::map<library::DownloadID, Ref<SSDownload>> _pending;
  size_t _refused = 0;  // and nobody has heard of it yet
  library::DownloadID _latest = 0;
  std::shared_ptr<bool> _alive = std::make_shared<bool>(true);  // while this object is there
};

}  // namespace quaverly::instances
