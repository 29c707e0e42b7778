// The import server by itself, for measuring: serves the files of a folder under the device's media path.
// Usage: serve-folder FOLDER
#include <csignal>
#include <cstdio>

#include "Externals/HTTPServer/HTTPServer.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSRunLoop.h"

int main(int argc, char** argv) {
  using namespace quaverly;
  if (argc != 2) {
    std::fputs("usage: serve-folder FOLDER\n", stderr);
    return 2;
  }
  auto& device = Device::current();
  device.mounts.mount("/var/mobile/Media", argv[1], MountTable::Access::readOnly);
  device.clock = NSRunLoop::mainRunLoop().clock();
  auto* server = HTTPServer::sharedHTTPServer();
  server->start();
  if (server->state() != HTTPServerStateRunning) return 1;
  NSRunLoop::mainRunLoop().run();
}
