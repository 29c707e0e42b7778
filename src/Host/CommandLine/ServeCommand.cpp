#include <nlohmann/json.hpp>

#include "Controllers/QuaverlySettingsController.h"
#include "Host/CommandLine/Commands.h"
#include "Host/CommandLine/ServeSession.h"
#include "Host/CommandLine/ServiceRegistration.h"
#include "Host/Environment/BrowserStart.h"
#include "Host/Environment/InterruptWatch.h"
#include "Host/Environment/ProcessLimits.h"
#include "Host/Instances/ServingInstance.h"
#include "Host/Library/DataLock.h"
#include "Host/Screens/Screens.h"
#include "Platform/UIKit/UINavigationController.h"

namespace quaverly::commandline {
namespace {

using library::DataLock;

ExitStatus cannotServe(const Console& console, const library::Failure& failure) {
  console.problem("", failure.reason);
  return ExitStatus::failed;
}

/// Says where the page is already. The address with its token goes to nobody but the owner of the data
/// folder: that one's socket has told it.
ExitStatus servedAlready(const Console& console, const std::string& dataFolder) {
  const auto page = instances::askForPage(dataFolder);
  if (!page) {
    return cannotServe(
        console, {"Another quaverly serves this data folder and does not answer. End it, then try again."});
  }
  return cannotServe(console, {"Another quaverly (process " + std::to_string(page->process) +
                               ") serves this data folder already. Its page is at " + page->address});
}

/// The bundle's first pane, as the Settings application loads it, shown to the pages.
std::unique_ptr<page::PageDelegate> makeScreens(page::PageRoutes& routes) {
  const auto pane = make<QuaverlySettingsController>();
  pane->setBundle(NSBundle::bundleWithPath(HostDevice::bundlePath));
  pane->init();
  return std::make_unique<screens::Screens>(routes, make<UINavigationController>(pane));
}

/// What the panes read and write. Without engines of the user's own those of the program are shown, and none
/// of them can be switched.
void provideFiles(const Console& console, const HostDevice& device) {
  for (const auto& problem : {device.provideEngines(), device.providePreferences()})
    if (problem) console.problem("", problem->reason);
  device.providePackageStatus();
}

void announce(const Console& console, const std::string& address) {
  console.result(address);
  console.object({{"address", address}});
}

}  // namespace

ExitStatus runServe(Console& console, const CommonOptions& common, const ServeOptions& options) {
  host::returnLargeMemoryAtOnce();
  HostDevice device(common);
  ServeSession* running = nullptr;
  const host::InterruptWatch watch([&running] {
    if (running) running->interrupt();
  });
  library::ImportServer server;
  auto service = library::DownloadService::open(device.librarySettings(), device.outsideFiles(), server);
  if (!service) return cannotServe(console, service.failure());
  const auto turn = DataLock::tryTake(common.data, DataLock::Turn::serving);
  if (!turn) return cannotServe(console, turn.failure());
  if (!*turn) return servedAlready(console, common.data);

  provideFiles(console, device);
  const ServiceRegistration registration(**service);
  ServeSession session(device, **service, options, makeScreens);
  if (const auto failure = session.start()) return cannotServe(console, *failure);
  running = &session;
  announce(console, session.address());
  std::optional<host::BrowserStart> browser;
  if (options.opensBrowser) browser.emplace(common.data, session.address());
  session.run();
  return ExitStatus::done;
}

}  // namespace quaverly::commandline
