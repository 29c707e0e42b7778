#include "Host/CommandLine/ServeSession.h"

#include "Host/Environment/DeviceFacts.h"
#include "Host/Environment/HostWords.h"
#include "Host/Page/PageWords.h"
#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::commandline {
namespace {

std::string pageFolder() {
  return host::bundleFolder().parent_path() / "page";
}

}  // namespace

ServeSession::ServeSession(HostDevice& device, library::DownloadService& service, const ServeOptions& options,
                           const MakeScreens& makeScreens)
    : _settings(device.librarySettings()),
      _service(service),
      _server({options.pagePort, pageFolder()}, _delegates),
      _panels(service, _settings.libraryFolder),
      _libraryFiles(service.catalogue(), _server.routes()),
      _screens(makeScreens ? makeScreens(_server.routes()) : nullptr) {
  page::addPageWords(_server.routes(), pageFolder(), host::HostWords::current().language());
  _delegates.add(_panels);
  if (_screens) _delegates.add(*_screens);
  _service.addObserver(this);
}

ServeSession::~ServeSession() {
  _service.removeObserver(this);
}

library::MaybeFailure ServeSession::start() {
  if (auto failure = _server.start()) return failure;
  _instances.emplace(_settings, _service, _server.address());
  if (auto failure = _instances->start()) return failure;
  // Once others can hand their downloads over, so that no import waits for a turn that it will not get.
  _service.resumeInterrupted();
  return std::nullopt;
}

void ServeSession::run() {
  NSRunLoop::mainRunLoop().run();
}

void ServeSession::interrupt() {
  _service.stop();
}

void ServeSession::serviceStopped(const std::vector<library::DownloadRecord>&) {
  NSRunLoop::mainRunLoop().stop();
}

}  // namespace quaverly::commandline
