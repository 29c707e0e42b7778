#include "Host/CommandLine/Commands.h"
#include "Host/CommandLine/ImportSession.h"
#include "Host/CommandLine/ServiceRegistration.h"
#include "Host/Environment/InterruptWatch.h"
#include "Host/Instances/ServingInstance.h"
#include "Host/Library/DownloadService.h"
#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::commandline {
namespace {

ExitStatus statusOf(const ImportReport& report) {
  return report.hasFailures() ? ExitStatus::failed : ExitStatus::done;
}

ExitStatus cannotBegin(const Console& console, const library::Failure& failure) {
  console.problem("", failure.reason);
  return ExitStatus::failed;
}

ExitStatus planAll(const ImportOptions& options, HostDevice& device, SongHandOver& handOver,
                   Console& console) {
  auto planner = library::DryRun::open(device.librarySettings());
  if (!planner) return cannotBegin(console, planner.failure());
  const ServiceRegistration registration(**planner);
  ImportReport report(console);
  for (const auto& file : options.files) {
    if (const auto failure = handOver.handOver(file)) {
      report.refused(file, failure->reason);
    } else {
      report.planned(file, (*planner)->outcomes().back());
    }
    NSRunLoop::mainRunLoop().runOnce();  // completes the download, which nobody else would let go
  }
  return statusOf(report);
}

/// This program's own service, or that of the instance that serves on the data folder.
library::Result<std::unique_ptr<library::ImportService>> findService(HostDevice& device,
                                                                     library::SongServer& server) {
  auto serving = instances::ServingInstance::find(device.librarySettings());
  if (!serving) return serving.failure();
  if (*serving) return std::unique_ptr<library::ImportService>(*std::move(serving));
  auto own = library::DownloadService::open(device.librarySettings(), device.outsideFiles(), server);
  if (!own) return own.failure();
  return std::unique_ptr<library::ImportService>(*std::move(own));
}

ExitStatus importAll(const ImportOptions& options, HostDevice& device, SongHandOver& handOver,
                     Console& console) {
  ImportSession* running = nullptr;
  const host::InterruptWatch watch([&running] {
    if (running) running->interrupt();
  });
  library::ImportServer server;
  auto service = findService(device, server);
  if (!service) return cannotBegin(console, service.failure());
  const ServiceRegistration registration(**service);
  ImportReport report(console);
  ImportSession session(options.files, handOver, **service, report);
  running = &session;
  session.run();
  report.summarise(device.librarySettings().libraryFolder);
  return statusOf(report);
}

}  // namespace

ExitStatus runImport(Console& console, const CommonOptions& common, const ImportOptions& options) {
  HostDevice device(common);
  SongHandOver handOver(device, options, console);
  if (const auto failure = handOver.prepareArtwork()) {
    console.problem(*options.artwork, failure->reason);
    return ExitStatus::failed;
  }
  return (options.dryRun ? planAll : importAll)(options, device, handOver, console);
}

}  // namespace quaverly::commandline
