#include "Platform/Foundation/NSThread.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "Platform/Foundation/NSLog.h"

namespace quaverly {

bool NSThread::isMainThread() {
  thread_local const bool isMain = gettid() == getpid();
  return isMain;
}

void NSThread::requireMainThread(std::string_view what) {
  if (isMainThread()) return;
  NSLog(std::string(what) + " on a thread that is not the main thread");
  std::abort();
}

}  // namespace quaverly
