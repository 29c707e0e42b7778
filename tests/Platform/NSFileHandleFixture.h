#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Platform/Foundation/CFSocket.h"
#include "Platform/Foundation/NSFileHandle.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Support/SocketClient.h"
#include "Support/TestDevice.h"

namespace quaverly::test {

/// 0.0.0.0:8080 as the platform writes it.
inline const NSData anyAddress(std::string("\x10\x02\x1F\x90\0\0\0\0\0\0\0\0\0\0\0\0", 16));

Ref<CFSocket> newSocket();

/// Keeps the connections that come from a listening handle, and counts when they have data.
class ConnectionObserver : public NSObject {
 public:
  void observe(NSFileHandle* listener);
  void accepted(const NSNotification& notification);
  void dataAvailable(const NSNotification&) { ++availabilities; }

  std::vector<Ref<NSFileHandle>> connections;
  int availabilities = 0;
};

/// A listening handle in a network of its own.
class NSFileHandleFixture : public testing::Test {
 protected:
  NSFileHandleFixture();

  /// A client's connection, accepted.
  Ref<NSFileHandle> accept();

  /// Lets the handle go, so that its connection ends.
  void drop(Ref<NSFileHandle>& handle);

  /// How many descriptors are open, those that the platform keeps from its first connection on included.
  size_t descriptorsAfterFirstConnection();

  /// The contents of a song of that size, backed by its file.
  NSData fileOfSize(size_t size);

  /// Advances the device's time, with the loop running before and after.
  void pass(Clock::Duration time);

  TestDevice device;
  Ref<CFSocket> socket;
  Ref<NSFileHandle> listener;
  Ref<ConnectionObserver> observer = make<ConnectionObserver>();
};

}  // namespace quaverly::test
