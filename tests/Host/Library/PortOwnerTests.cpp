#include "Host/Library/PortOwner.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quaverly::library {
namespace {

/// A socket on a free port of this machine.
class BoundSocket {
 public:
  explicit BoundSocket(int family) : _descriptor(socket(family, SOCK_STREAM, 0)) {
    sockaddr_in6 address{};  // large enough for both families; zero is any address and any port
    address.sin6_family = static_cast<sa_family_t>(family);
    socklen_t size = family == AF_INET ? sizeof(sockaddr_in) : sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(_descriptor, generic, size), 0);
    getsockname(_descriptor, generic, &size);
    _port = ntohs(address.sin6_port);  // at the same place in both
  }
  ~BoundSocket() { close(_descriptor); }

  void startListening() const { EXPECT_EQ(listen(_descriptor, 1), 0); }
  uint16_t port() const { return _port; }

 private:
  int _descriptor;
  uint16_t _port = 0;
};

TEST(OwnerOfPort, IsTheProgramThatListens) {
  for (const int family : {AF_INET, AF_INET6}) {
    const BoundSocket socket(family);
    EXPECT_FALSE(ownerOfPort(socket.port()));
    socket.startListening();
    const auto owner = ownerOfPort(socket.port());
    ASSERT_TRUE(owner);
    EXPECT_EQ(owner->process, getpid());
    EXPECT_EQ(owner->program, nameOfThisProgram());
    EXPECT_EQ(owner->program, "PortOwnerTests");
  }
}

}  // namespace
}  // namespace quaverly::library
