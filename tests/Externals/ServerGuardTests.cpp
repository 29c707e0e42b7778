#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Externals/HTTPServer/HTTPServer.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Support/ChildProcess.h"
#include "Support/Command.h"
#include "Support/NetworkNamespace.h"
#include "Support/SocketClient.h"
#include "Support/TestDevice.h"

// Who is let in to the import server, from where, and under which of this machine's names.
namespace quaverly {
namespace {

constexpr const char* request =
    "GET /qvtolmarinimporter.mp3?/var/mobile/Media/x.mp3 HTTP/1.1\r\nHost: localhost\r\n\r\n";

// What a client in a process of its own reports by its exit status.
constexpr int served = 10, turnedAway = 11, unreachable = 12;

/// One request, by a client whose process does not run the server's loop.
int askFrom(const char* address) {
  try {
    test::SocketClient client(address);
    if (!client.send(request)) return turnedAway;
    const auto answer = client.receiveToEnd().value_or("");
    if (answer.empty()) return turnedAway;
    return answer.ends_with("\r\n\r\nsong") ? served : 1;
  } catch (const std::runtime_error&) {
    return unreachable;
  }
}

int askAs(uid_t user, test::Signal& start) {
  start.await();
  if (::setresgid(user, user, user) != 0 || ::setresuid(user, user, user) != 0) return 1;
  return askFrom("127.0.0.1");
}

class ServerGuardTest : public testing::Test {
 protected:
  ServerGuardTest() {
    test::enterOwnNetwork();
    device.media().write("x.mp3", "song");
  }
  ~ServerGuardTest() override { HTTPServer::sharedHTTPServer()->stop(); }

  /// Serves until the child has ended; its exit status.
  static int serve(test::ChildProcess& child, test::Signal& start) {
    HTTPServer::sharedHTTPServer()->start();
    start.give();
    EXPECT_TRUE(test::runLoopUntil([&] { return child.exitStatus().has_value(); }));
    return child.exitStatus().value_or(-1);
  }

  test::TestDevice device;
};

/// Counts the connections that the server gets to see.
class ConnectionCounter : public NSObject {
 public:
  ConnectionCounter() {
    NSNotificationCenter::defaultCenter().addObserver(this, &ConnectionCounter::count,
                                                      NSFileHandleConnectionAcceptedNotification, nullptr);
  }
  void count(const NSNotification&) { ++connections; }

  int connections = 0;
};

TEST_F(ServerGuardTest, AnswersAProgramOfTheSameUser) {
  test::Signal start;
  test::ChildProcess child([&] {
    start.await();
    return askFrom("127.0.0.1");
  });
  EXPECT_EQ(serve(child, start), served);
}

TEST_F(ServerGuardTest, TurnsAProgramOfAnotherUserAway) {
  ASSERT_EQ(::geteuid(), 0U) << "only root can be somebody else";
  test::Signal start;
  test::ChildProcess child([&] { return askAs(65534, start); });
  EXPECT_EQ(serve(child, start), turnedAway);
}

TEST_F(ServerGuardTest, AnotherUsersServerAnswersRootAndItselfAndNobodyElse) {
  ASSERT_EQ(::geteuid(), 0U) << "only root can be somebody else";
  constexpr uid_t owner = 65534, stranger = 65533;
  test::run("chmod 755 " + device.media().path().string());
  test::Signal listening, startStranger, startOwner;
  test::ChildProcess server([&] {
    if (::setresgid(owner, owner, owner) != 0 || ::setresuid(owner, owner, owner) != 0) return 1;
    HTTPServer::sharedHTTPServer()->start();
    listening.give();
    NSRunLoop::mainRunLoop().run();
    return 0;
  });
  test::ChildProcess asStranger([&] { return askAs(stranger, startStranger); });
  test::ChildProcess asOwner([&] { return askAs(owner, startOwner); });
  listening.await();
  EXPECT_EQ(askFrom("127.0.0.1"), served);
  startStranger.give();
  startOwner.give();
  EXPECT_TRUE(test::runLoopUntil([&] { return asStranger.exitStatus() && asOwner.exitStatus(); }));
  EXPECT_EQ(asStranger.exitStatus(), turnedAway);
  EXPECT_EQ(asOwner.exitStatus(), served);
}

TEST_F(ServerGuardTest, TurnsAnotherMachineAwayAndAnswersThisOneUnderAnyOfItsAddresses) {
  test::Signal hasNetwork, isConnected;
  test::ChildProcess neighbour([&] {
    if (::unshare(CLONE_NEWNET) != 0) return 1;
    hasNetwork.give();
    isConnected.await();
    test::run("ip addr add 10.209.0.2/24 dev neighbour && ip link set neighbour up");
    return askFrom("10.209.0.1");
  });
  hasNetwork.await();
  test::run("ip link add ours type veth peer name neighbour netns " + std::to_string(neighbour.id()));
  test::run("ip addr add 10.209.0.1/24 dev ours && ip link set ours up");
  EXPECT_EQ(serve(neighbour, isConnected), turnedAway);

  test::SocketClient client("10.209.0.1");
  client.send(request);
  EXPECT_THAT(client.receiveToEnd(), testing::Optional(testing::EndsWith("\r\n\r\nsong")));
}

TEST_F(ServerGuardTest, WhoHasHungUpBeforeBeingLookedAtIsNobody) {
  HTTPServer::sharedHTTPServer()->start();
  const auto counter = make<ConnectionCounter>();
  {
    const test::SocketClient client;
    const std::string bytes = request;
    ASSERT_EQ(::send(client.descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL), std::ssize(bytes));
  }
  test::settleLoop();
  EXPECT_EQ(counter->connections, 0);
  EXPECT_EQ(askFrom("127.0.0.1"), served);
  EXPECT_EQ(counter->connections, 1);
}

TEST_F(ServerGuardTest, ABorrowedHostNameIsClosedWithoutAWord) {
  HTTPServer::sharedHTTPServer()->start();
  for (const auto* host : {"evil.example", "evil.example:8080", "192.0.2.1:8080", "localhost.evil.example"}) {
    test::SocketClient client;
    client.send(std::string("GET /qvtolmarinimporter.mp3?/var/mobile/Media/x.mp3 HTTP/1.1\r\nHost: ") + host +
                "\r\n\r\n");
    EXPECT_EQ(client.receiveToEnd(), "") << host;
  }
  EXPECT_EQ(askFrom("127.0.0.1"), served);
}

}  // namespace
}  // namespace quaverly
