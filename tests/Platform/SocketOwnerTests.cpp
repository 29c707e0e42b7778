#include "Platform/Foundation/Sockets/SocketOwner.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <ostream>

#include "Support/NetworkNamespace.h"

namespace quaverly {
namespace {

using Ask = std::function<std::optional<SocketOwner>(SocketEndpoint own, SocketEndpoint peer)>;

std::optional<SocketOwner> askDiagnosis(SocketEndpoint own, SocketEndpoint peer) {
  SocketOwner owner{};
  const auto result = diagnoseSocket(own, peer, owner);
  EXPECT_NE(result, SocketDiagnosis::unavailable);
  return result == SocketDiagnosis::found ? std::optional(owner) : std::nullopt;
}

struct Way {
  const char* name;
  Ask ask;

  friend std::ostream& operator<<(std::ostream& out, const Way& way) { return out << way.name; }
};

/// A client and its connection, over IPv4 or by an IPv6 socket to the same address.
class SocketOwnerTest : public testing::TestWithParam<Way> {
 protected:
  SocketOwnerTest() {
    test::enterOwnNetwork();
    _listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    auto address = loopback(8080);
    EXPECT_EQ(::bind(_listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(_listener, 8), 0);
  }
  ~SocketOwnerTest() override {
    for (const int one : {_listener, client, connection}) ::close(one);
  }

  static sockaddr_in loopback(uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
  }

  void connect() {
    client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    auto address = loopback(8080);
    ASSERT_EQ(::connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    accept();
  }
  void connectBySocketOfTheOtherFamily() {
    client = ::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(8080);
    ASSERT_EQ(::inet_pton(AF_INET6, "::ffff:127.0.0.1", &address.sin6_addr), 1);
    ASSERT_EQ(::connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    accept();
  }
  void accept() {
    sockaddr_in from{};
    socklen_t size = sizeof from;
    connection = ::accept(_listener, reinterpret_cast<sockaddr*>(&from), &size);
    peer = {from.sin_addr.s_addr, from.sin_port};
  }

  std::optional<SocketOwner> owner() { return GetParam().ask(peer, own); }

  int client = -1, connection = -1;
  SocketEndpoint peer{};
  const SocketEndpoint own{htonl(INADDR_LOOPBACK), htons(8080)};

 private:
  int _listener = -1;
};

uint64_t inodeOf(int descriptor) {
  struct stat status {};
  ::fstat(descriptor, &status);
  return status.st_ino;
}

TEST_P(SocketOwnerTest, IsTheUserOfTheProgramThatConnected) {
  connect();
  ASSERT_TRUE(owner());
  EXPECT_EQ(owner()->user, ::geteuid());
  EXPECT_EQ(owner()->inode, inodeOf(client));
}

TEST_P(SocketOwnerTest, IsFoundWhateverKindOfSocketConnected) {
  connectBySocketOfTheOtherFamily();
  ASSERT_TRUE(owner());
  EXPECT_EQ(owner()->inode, inodeOf(client));
}

TEST_P(SocketOwnerTest, TellsTheTwoEndsApart) {
  connect();
  const auto ours = GetParam().ask(own, peer);
  ASSERT_TRUE(ours);
  EXPECT_EQ(ours->inode, inodeOf(connection));
}

TEST_P(SocketOwnerTest, OfASocketThatIsClosedThereIsNoInode) {
  connect();
  ::close(client);
  const auto found = owner();
  EXPECT_TRUE(!found || found->inode == 0);
}

TEST_P(SocketOwnerTest, OfAConnectionThatDoesNotExistThereIsNone) {
  connect();
  EXPECT_FALSE(GetParam().ask({peer.address, htons(1)}, own));
  EXPECT_FALSE(GetParam().ask({htonl(0xC0000201), peer.port}, own));
}

TEST_P(SocketOwnerTest, WhoListensOnAPortIsNotWhoConnectedFromIt) {
  connect();
  EXPECT_FALSE(GetParam().ask(own, {htonl(INADDR_LOOPBACK), htons(1)}));
}

INSTANTIATE_TEST_SUITE_P(, SocketOwnerTest,
                         testing::Values(Way{"AskingTheKernel", askDiagnosis},
                                         Way{"LookingItUpInTables", findInSocketTables},
                                         Way{"OneOrTheOther", ownerOfSocket}),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace quaverly
