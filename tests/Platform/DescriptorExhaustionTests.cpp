#include <unistd.h>

#include "NSFileHandleFixture.h"
#include "Platform/Foundation/Sockets/ConnectionAcceptor.h"

namespace quaverly {
namespace {

using test::settleLoop;
using test::SocketClient;

using DescriptorExhaustionTest = test::NSFileHandleFixture;

TEST_F(DescriptorExhaustionTest, WithoutDescriptorsItWaitsIdlyAndRecovers) {
  SocketClient client;
  std::vector<int> hoard;
  for (int one = ::dup(0); one >= 0; one = ::dup(0)) hoard.push_back(one);
  listener->acceptConnectionInBackgroundAndNotify();
  settleLoop();
  EXPECT_EQ(observer->connections.size(), 0U);
  EXPECT_EQ(device.clock().alarms(), 1U);
  pass(ConnectionAcceptor::backOff);
  EXPECT_EQ(observer->connections.size(), 0U);
  for (const int one : hoard) ::close(one);
  settleLoop();
  EXPECT_EQ(observer->connections.size(), 0U);  // it does not spin
  pass(ConnectionAcceptor::backOff);
  EXPECT_EQ(observer->connections.size(), 1U);
}

}  // namespace
}  // namespace quaverly
