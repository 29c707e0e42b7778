#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>

#include "NSFileHandleFixture.h"

namespace quaverly {
namespace {

using test::newSocket;
using test::settleLoop;
using test::SocketClient;

using CFSocketTest = test::NSFileHandleFixture;

TEST_F(CFSocketTest, ClosingAndInvalidatingCloseTheSocketOnce) {
  listener->closeFile();
  EXPECT_EQ(CFSocketGetNative(socket), nullptr);
  const int other = ::open("/dev/null", O_RDONLY | O_CLOEXEC);  // gets the number that has become free
  CFSocketInvalidate(socket);
  socket = nullptr;
  listener = nullptr;
  EXPECT_GE(::fcntl(other, F_GETFD), 0);
  ::close(other);
}

TEST_F(CFSocketTest, InvalidatingTheSocketClosesItForTheHandleToo) {
  listener->acceptConnectionInBackgroundAndNotify();
  settleLoop();
  CFSocketInvalidate(socket);
  EXPECT_THROW(SocketClient(), std::runtime_error);
  const auto next = newSocket();
  EXPECT_EQ(CFSocketSetAddress(next, test::anyAddress), CFSocketError::success);
  listener->acceptConnectionInBackgroundAndNotify();
  listener->closeFile();
  SocketClient client;  // the next one still listens
  settleLoop();
  EXPECT_EQ(observer->connections.size(), 0U);
}

TEST_F(CFSocketTest, AHandleThatShallNotCloseLeavesTheSocketOpen) {
  listener = NSFileHandle::initWithFileDescriptorCloseOnDealloc(CFSocketGetNative(socket),
                                                                NSFileHandle::CloseOnDealloc::no);
  EXPECT_EQ(CFSocketGetNative(socket), nullptr);  // the first handle closed it
  socket = newSocket();
  listener = NSFileHandle::initWithFileDescriptorCloseOnDealloc(CFSocketGetNative(socket),
                                                                NSFileHandle::CloseOnDealloc::no);
  listener = nullptr;
  EXPECT_NE(CFSocketGetNative(socket), nullptr);
}

TEST_F(CFSocketTest, OnlyThePlatformsAddressesAreTaken) {
  std::string tooShort(15, '\0'), wrongLength(16, '\0'), wrongFamily(16, '\0');
  wrongFamily[0] = 16;
  wrongLength[1] = 2;
  for (const auto& address : {tooShort, wrongLength, wrongFamily, std::string(28, '\x10')}) {
    EXPECT_EQ(CFSocketSetAddress(newSocket(), NSData(address)), CFSocketError::error);
  }
  EXPECT_EQ(CFSocketSetAddress(newSocket(), test::anyAddress), CFSocketError::error);  // taken
}

TEST_F(CFSocketTest, ItsSocketsAreNotInherited) {
  SocketClient client;
  accept();
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int number = std::stoi(entry.path().filename());
    int type = 0;
    socklen_t size = sizeof type;
    if (::getsockopt(number, SOL_SOCKET, SO_TYPE, &type, &size) != 0) continue;
    EXPECT_TRUE(::fcntl(number, F_GETFD) & FD_CLOEXEC) << number;
  }
}

}  // namespace
}  // namespace quaverly
