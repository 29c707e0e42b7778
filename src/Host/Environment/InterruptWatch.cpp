#include "Host/Environment/InterruptWatch.h"

#include <pthread.h>
#include <unistd.h>

#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::host {
namespace {

constexpr int exitStatusOfInterrupted = 130;

}  // namespace

InterruptWatch::InterruptWatch(std::function<void()> onInterrupt) {
  sigemptyset(&_signals);
  sigaddset(&_signals, SIGINT);
  sigaddset(&_signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &_signals, nullptr);
  _thread = std::jthread([signals = _signals, onInterrupt](const std::stop_token& stop) {
    bool interrupted = false;
    for (int signal = 0; sigwait(&signals, &signal) == 0 && !stop.stop_requested();) {
      if (interrupted) _exit(exitStatusOfInterrupted);
      interrupted = true;
      NSRunLoop::mainRunLoop().performBlock(onInterrupt);
    }
  });
}

InterruptWatch::~InterruptWatch() {
  _thread.request_stop();
  pthread_kill(_thread.native_handle(), SIGTERM);
  _thread.join();
  pthread_sigmask(SIG_UNBLOCK, &_signals, nullptr);
}

}  // namespace quaverly::host
