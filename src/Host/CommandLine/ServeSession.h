#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Host/CommandLine/HostDevice.h"
#include "Host/CommandLine/Options.h"
#include "Host/Instances/InstanceServer.h"
#include "Host/Library/DownloadService.h"
#include "Host/Page/LibraryFiles.h"
#include "Host/Page/PageDelegates.h"
#include "Host/Page/PageServer.h"
#include "Host/Page/Panels.h"

namespace quaverly::commandline {

/// Makes what shows the device's screens to the pages. It may add routes of its own, and takes them away when
/// it goes. Called once, when the page's server is there and before anybody can connect.
using MakeScreens = std::function<std::unique_ptr<page::PageDelegate>(page::PageRoutes& routes)>;

/// One run of `serve`: the page's server with the panels and the screens, and the door for other instances,
/// around a download service. Lasts until somebody interrupts. The device and the service must outlive it.
/// Main thread.
class ServeSession : public library::DownloadObserver {
 public:
  ServeSession(HostDevice& device, library::DownloadService& service, const ServeOptions& options,
               const MakeScreens& makeScreens);
  ~ServeSession() override;

  /// Opens everything. Only for who has the turn to serve on the data folder.
  [[nodiscard]] library::MaybeFailure start();
  /// Where the page is, with the token. After `start`.
  std::string address() const { return _server.address(); }

  /// Runs the main loop until it was interrupted and the service has stopped.
  void run();
  /// Ends after the current step.
  void interrupt();

  void serviceStopped(const std::vector<library::DownloadRecord>& notDone) override;

 private:
  library::LibrarySettings _settings;
  library::DownloadService& _service;
  page::PageDelegates _delegates;
  page::PageServer _server;
  page::Panels _panels;
  page::LibraryFiles _libraryFiles;
  std::unique_ptr<page::PageDelegate> _screens;
  std::optional<instances::InstanceServer> _instances;
};

}  // namespace quaverly::commandline
