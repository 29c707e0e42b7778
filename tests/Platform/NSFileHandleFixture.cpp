#include "NSFileHandleFixture.h"

#include "Support/Descriptors.h"
#include "Support/NetworkNamespace.h"

namespace quaverly::test {

Ref<CFSocket> newSocket() {
  return CFSocketCreate(CFSocketFamily::inet, CFSocketType::stream, CFSocketProtocol::tcp);
}

void ConnectionObserver::observe(NSFileHandle* listener) {
  NSNotificationCenter::defaultCenter().addObserver(this, &ConnectionObserver::accepted,
                                                    NSFileHandleConnectionAcceptedNotification, listener);
}

void ConnectionObserver::accepted(const NSNotification& notification) {
  const auto item = notification.userInfo().find(NSFileHandleNotificationFileHandleItem);
  ASSERT_NE(item, notification.userInfo().end());
  connections.emplace_back(static_cast<NSFileHandle*>(item->second.get()));
  NSNotificationCenter::defaultCenter().addObserver(
      this, &ConnectionObserver::dataAvailable, NSFileHandleDataAvailableNotification, item->second.get());
}

NSFileHandleFixture::NSFileHandleFixture() {
  enterOwnNetwork();
  socket = newSocket();
  EXPECT_EQ(setsockopt(CFSocketGetNative(socket), CFSocketOption::reuseAddress, 1), 0);
  EXPECT_EQ(CFSocketSetAddress(socket, anyAddress), CFSocketError::success);
  listener = NSFileHandle::initWithFileDescriptorCloseOnDealloc(CFSocketGetNative(socket),
                                                                NSFileHandle::CloseOnDealloc::yes);
  observer->observe(listener.get());
}

Ref<NSFileHandle> NSFileHandleFixture::accept() {
  const size_t count = observer->connections.size();
  listener->acceptConnectionInBackgroundAndNotify();
  EXPECT_TRUE(runLoopUntil([&] { return observer->connections.size() > count; }));
  return observer->connections.back();
}

void NSFileHandleFixture::drop(Ref<NSFileHandle>& handle) {
  std::erase(observer->connections, handle);
  handle = nullptr;
}

size_t NSFileHandleFixture::descriptorsAfterFirstConnection() {
  SocketClient client;
  auto handle = accept();
  EXPECT_TRUE(handle->writeData(NSData("x")));
  drop(handle);
  EXPECT_EQ(client.receiveToEnd(), "x");
  client.close();
  settleLoop();
  return openDescriptors();
}

NSData NSFileHandleFixture::fileOfSize(size_t size) {
  std::string contents(size, '\0');
  for (size_t i = 0; i < size; ++i) contents[i] = static_cast<char>(i * 2654435761U >> 11);
  device.media().write("song.mp3", contents);
  return *NSData::dataWithContentsOfFile("/var/mobile/Media/song.mp3");
}

void NSFileHandleFixture::pass(Clock::Duration time) {
  settleLoop();
  device.clock().advance(time);
  settleLoop();
}

}  // namespace quaverly::test
