#include <chrono>
#include <utility>

#include "Host/CommandLine/Commands.h"
#include "Host/CommandLine/ImportSession.h"
#include "Host/CommandLine/ServiceRegistration.h"
#include "Host/Environment/InterruptWatch.h"
#include "Host/Instances/ServingInstance.h"
#include "Host/Library/DataLock.h"
#include "Host/Library/DownloadService.h"
#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::commandline {
namespace {

using MaybeService = library::Result<std::unique_ptr<library::ImportService>>;

/// How often the turn that another program has is asked for again.
constexpr std::chrono::milliseconds pauseLength{100};

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

/// The service of the instance that serves on the data folder; or this program's own, once it has the turn to
/// file, so that no instance that starts meanwhile takes it away for as long as it serves. Null while neither
/// is to be had.
MaybeService findService(HostDevice& device, library::SongServer& server) {
  const auto& settings = device.librarySettings();
  auto serving = instances::ServingInstance::find(settings);
  if (!serving) return serving.failure();
  if (*serving) return std::unique_ptr<library::ImportService>(*std::move(serving));
  auto turn = library::DataLock::tryTake(settings.dataFolder);
  if (!turn) return turn.failure();
  if (!*turn) return std::unique_ptr<library::ImportService>();
  auto own = library::DownloadService::open(settings, device.outsideFiles(), server, *std::move(turn));
  if (!own) return own.failure();
  return std::unique_ptr<library::ImportService>(*std::move(own));
}

/// The same, and waits for it; null when it was interrupted. Runs the main loop meanwhile.
MaybeService awaitService(HostDevice& device, library::SongServer& server, ImportReport& report,
                          const bool& isInterrupted) {
  for (bool told = false; !isInterrupted;) {
    auto service = findService(device, server);
    if (!service || *service) return service;
    if (!std::exchange(told, true)) report.waits(library::anotherHasTheTurn);
    NSRunLoop::mainRunLoop().runOnce(pauseLength);
  }
  return std::unique_ptr<library::ImportService>();
}

ExitStatus importAll(const ImportOptions& options, HostDevice& device, SongHandOver& handOver,
                     Console& console) {
  ImportSession* running = nullptr;
  bool isInterrupted = false;
  const host::InterruptWatch watch([&] {
    isInterrupted = true;
    if (running) running->interrupt();
  });
  library::ImportServer server;
  ImportReport report(console);
  auto service = awaitService(device, server, report, isInterrupted);
  if (!service) return cannotBegin(console, service.failure());
  if (!*service) {
    for (const auto& file : options.files) report.leftOver(file, ImportReport::Rest::untouched);
    return statusOf(report);
  }
  const ServiceRegistration registration(**service);
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
