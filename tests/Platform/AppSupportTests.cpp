#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>

#include "Platform/AppSupport/CPDistributedMessagingCenter.h"
#include "Platform/Foundation/NSClass.h"
#include "Support/PrivateBus.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* name = "com.tolmarin.quaverly";

void send(std::string_view message) {
  CPDistributedMessagingCenter::centerNamed(name)->sendMessageNameUserInfo(message, std::nullopt);
}

TEST(MessagingCenter, SendsEachMessageOnceAndInOrder) {
  test::TestDevice device;
  test::PrivateBus bus;
  device->messageBusAddress = bus.address();
  send("enginesChanged");
  CPDistributedMessagingCenter::finishSending();
  EXPECT_THAT(bus.calls(), ElementsAre("/com/tolmarin/quaverly com.tolmarin.quaverly enginesChanged"));
  send("first");
  send("second");
  CPDistributedMessagingCenter::finishSending();
  EXPECT_THAT(bus.calls(), ElementsAre("/com/tolmarin/quaverly com.tolmarin.quaverly first",
                                       "/com/tolmarin/quaverly com.tolmarin.quaverly second"));
}

TEST(MessagingCenter, OneNameIsOneCentre) {
  EXPECT_EQ(CPDistributedMessagingCenter::centerNamed(name), CPDistributedMessagingCenter::centerNamed(name));
  EXPECT_NE(CPDistributedMessagingCenter::centerNamed(name),
            CPDistributedMessagingCenter::centerNamed("org.x"));
}

TEST(MessagingCenter, IsFoundByNameUnlessTheDeviceLacksIt) {
  test::TestDevice device;
  EXPECT_TRUE(NSClassFromString<CPDistributedMessagingCenter>("CPDistributedMessagingCenter"));
  device->absentClasses.insert("CPDistributedMessagingCenter");
  EXPECT_FALSE(NSClassFromString("CPDistributedMessagingCenter"));
}

TEST(MessagingCenter, WithoutABusNothingHappens) {
  test::TestDevice device;
  send("enginesChanged");
  for (const char* nowhere : {"unix:path=/nowhere/bus", "no address", "tcp:host=127.0.0.1,port=1"}) {
    device->messageBusAddress = nowhere;
    send("enginesChanged");
    CPDistributedMessagingCenter::finishSending();
  }
  test::PrivateBus bus;
  EXPECT_THAT(bus.calls(), IsEmpty());
}

/// Takes connections, as every listening socket does, and never says a word.
class SilentBus {
 public:
  SilentBus() : _socket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path().copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(_socket, 8), 0);
  }
  ~SilentBus() { close(_socket); }

  std::string path() const { return _folder / "bus"; }

 private:
  test::TemporaryFolder _folder;
  int _socket;
};

TEST(MessagingCenter, ABusThatStaysSilentHoldsNobodyLongerThanTheLimit) {
  test::TestDevice device;
  const SilentBus silent;
  device->messageBusAddress = "unix:path=" + silent.path();
  const auto began = steady_clock::now();
  send("enginesChanged");
  EXPECT_LT(steady_clock::now() - began, std::chrono::seconds(1));
  CPDistributedMessagingCenter::finishSending();
  EXPECT_GE(steady_clock::now() - began, std::chrono::milliseconds(1900));
  EXPECT_LT(steady_clock::now() - began, std::chrono::seconds(5));
}

}  // namespace
}  // namespace quaverly
