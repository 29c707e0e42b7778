#include "Externals/HTTPServer/HTTPServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "Platform/Foundation/NSLog.h"
#include "Support/NetworkNamespace.h"
#include "Support/SocketClient.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

HTTPServer& server() {
  return *HTTPServer::sharedHTTPServer();
}

/// Writes down each state that the server says it is in.
class StateRecorder : public NSObject {
 public:
  StateRecorder() {
    NSNotificationCenter::defaultCenter().addObserver(this, &StateRecorder::note,
                                                      "ServerNotificationStateChanged", &server());
  }
  void note(const NSNotification& notification) {
    EXPECT_EQ(notification.object(), &server());
    EXPECT_THAT(notification.userInfo(), IsEmpty());
    states.push_back(server().state());
  }

  std::vector<int> states;
};

class HTTPServerTest : public testing::Test {
 protected:
  HTTPServerTest() {
    test::enterOwnNetwork();
    setLogSink([this](std::string_view line) { log.emplace_back(line); });
  }
  ~HTTPServerTest() override {
    server().stop();
    setLogSink(nullptr);
  }

  /// Whether the server answers a new client.
  static bool isServing() {
    test::SocketClient client;
    client.send("GET / HTTP/1.1\r\n\r\n");
    return client.receiveToEnd().value_or("").starts_with("HTTP/1.1 501 ");
  }

  test::TestDevice device;
  std::vector<std::string> log;
};

TEST_F(HTTPServerTest, ThereIsOneAndItCannotBeLost) {
  auto& shared = server();
  EXPECT_EQ(&server(), &shared);
  EXPECT_EQ(HTTPServer::allocWithZone(), nullptr);
  EXPECT_EQ(shared.copyWithZone(), &shared);
  EXPECT_EQ(shared.retain(), &shared);
  EXPECT_EQ(shared.autorelease(), &shared);
  EXPECT_EQ(shared.retainCount(), std::numeric_limits<size_t>::max());
  for (int i = 0; i < 3; ++i) shared.release();
  { const Ref<HTTPServer> reference(&shared); }
  EXPECT_EQ(server().state(), HTTPServerStateIdle);
  EXPECT_EQ(&server(), &shared);
}

TEST_F(HTTPServerTest, AnAllocatedOneIsTheSharedOne) {
  auto* allocated = HTTPServer::allocWithZone();
  ASSERT_NE(allocated, nullptr);
  EXPECT_EQ(allocated->init(), allocated);
  EXPECT_EQ(&server(), allocated);
}

TEST_F(HTTPServerTest, ManyThreadsMakeTheSameOne) {
  std::vector<HTTPServer*> made(8);
  {
    std::vector<std::jthread> threads;
    for (auto& one : made) threads.emplace_back([&one] { one = HTTPServer::sharedHTTPServer(); });
  }
  EXPECT_THAT(made, testing::Each(&server()));
}

TEST_F(HTTPServerTest, StartsAndStopsByWayOfEveryState) {
  const auto recorder = make<StateRecorder>();
  server().start();
  EXPECT_THAT(recorder->states, ElementsAre(1, 2));
  EXPECT_TRUE(isServing());
  server().stop();
  EXPECT_THAT(recorder->states, ElementsAre(1, 2, 3, 0));
  EXPECT_THROW(test::SocketClient(), std::runtime_error);
  server().start();
  EXPECT_TRUE(isServing());
}

TEST_F(HTTPServerTest, StoppingOneThatNeverRanEndsIdle) {
  const auto recorder = make<StateRecorder>();
  server().stop();
  EXPECT_THAT(recorder->states, ElementsAre(3, 0));
  EXPECT_FALSE(server().lastError());
}

TEST_F(HTTPServerTest, TheSameStateAgainIsNoNews) {
  const auto recorder = make<StateRecorder>();
  server().setState(HTTPServerStateIdle);
  EXPECT_THAT(recorder->states, IsEmpty());
  server().setState(HTTPServerStateStarting);
  server().setState(HTTPServerStateStarting);
  EXPECT_THAT(recorder->states, ElementsAre(1));
}

/// Port 8080 in somebody else's hands.
Ref<CFSocket> takePort() {
  auto socket = CFSocketCreate(CFSocketFamily::inet, CFSocketType::stream, CFSocketProtocol::tcp);
  const NSData address(std::string("\x10\x02\x1F\x90\0\0\0\0\0\0\0\0\0\0\0\0", 16));
  EXPECT_EQ(CFSocketSetAddress(socket, address), CFSocketError::success);
  return socket;
}

TEST_F(HTTPServerTest, ATakenPortIsAnErrorThatLeavesItIdle) {
  const auto recorder = make<StateRecorder>();
  const auto taken = takePort();
  server().start();
  EXPECT_THAT(recorder->states, ElementsAre(1, 3, 0));
  ASSERT_TRUE(server().lastError());
  EXPECT_EQ(server().lastError()->domain(), "HTTPServerError");
  EXPECT_EQ(server().lastError()->code(), 0);
  EXPECT_EQ(server().lastError()->localizedDescription(), "Unable to bind socket to address.");
  EXPECT_THAT(server().lastError()->userInfo(),
              ElementsAre(testing::Pair("NSLocalizedDescription", "Unable to bind socket to address.")));
  EXPECT_THAT(log,
              ElementsAre("HTTPServer error: Error Domain=HTTPServerError Code=0 \"Unable to bind socket to "
                          "address.\" UserInfo={NSLocalizedDescription=Unable to bind socket to address.}"));

  CFSocketInvalidate(taken);
  server().start();
  EXPECT_FALSE(server().lastError());
  EXPECT_TRUE(isServing());
}

TEST_F(HTTPServerTest, StartingARunningOneEndsBothAndFreesThePort) {
  server().start();
  const auto recorder = make<StateRecorder>();
  server().start();
  EXPECT_THAT(recorder->states, ElementsAre(1, 3, 0));
  EXPECT_EQ(server().lastError()->localizedDescription(), "Unable to bind socket to address.");
  EXPECT_THROW(test::SocketClient(), std::runtime_error);
  server().start();
  EXPECT_EQ(server().state(), HTTPServerStateRunning);
  EXPECT_TRUE(isServing());
}

TEST_F(HTTPServerTest, AnErrorStopsARunningOneAndNoErrorOnlyClears) {
  server().start();
  const auto recorder = make<StateRecorder>();
  server().errorWithName("Something.");
  EXPECT_THAT(recorder->states, ElementsAre(3, 0));
  EXPECT_THAT(log, ElementsAre(HasSubstr("\"Something.\"")));
  server().setLastError(nullptr);
  EXPECT_FALSE(server().lastError());
  EXPECT_THAT(recorder->states, ElementsAre(3, 0));
  EXPECT_EQ(log.size(), 1U);
}

TEST_F(HTTPServerTest, StoppingClosesConnectionsWhoseHeadsAreStillArriving) {
  server().start();
  test::SocketClient client;
  client.send("GET / HTTP/1.1\r\n");
  test::settleLoop();
  server().stop();
  EXPECT_TRUE(test::runLoopUntil([&] {
    client.received();
    return client.hasEnded() || client.isBroken();
  }));
}

TEST_F(HTTPServerTest, AHeadMayArriveByteByByteAndIsAnsweredWithTheLastOne) {
  server().start();
  test::SocketClient client;
  const std::string head = "GET /x HTTP/1.1\r\nHost: localhost:8080\r\n\r\n";
  for (const char c : head.substr(0, head.size() - 1)) {
    client.send({&c, 1});
    test::settleLoop();
    EXPECT_EQ(client.received(), "");
  }
  client.send("\n");
  EXPECT_THAT(client.receiveToEnd(), testing::Optional(StartsWith("HTTP/1.1 501 ")));
}

TEST_F(HTTPServerTest, ABodyIsNotAwaited) {
  server().start();
  test::SocketClient client;
  client.send("POST /x HTTP/1.1\r\nContent-Length: 99999999999999999999\r\n\r\n");
  EXPECT_THAT(client.receiveToEnd(), testing::Optional(StartsWith("HTTP/1.1 501 ")));
}

TEST_F(HTTPServerTest, GarbageEndsItsOwnConnectionAlone) {
  server().start();
  test::SocketClient patient;
  patient.send("GET / HT");
  test::settleLoop();
  for (const auto* garbage : {"\x16\x03\x01", "GET\n", "GET / HTTP/1.1\nHost: x\r\n", "GET /\r\n",
                              "GET / HTTP/2.0\r\n", "GET / HTTP/1.1\r\nno colon\r\n\r\n", "\r\n\r\n"}) {
    test::SocketClient client;
    client.send(garbage);
    EXPECT_EQ(client.receiveToEnd(), "") << garbage;
  }
  patient.send("TP/1.1\r\n\r\n");
  EXPECT_THAT(patient.receiveToEnd(), testing::Optional(StartsWith("HTTP/1.1 501 ")));
}

TEST_F(HTTPServerTest, TheFallbackNamesTheRequestsURLAndAddsNothing) {
  server().start();
  const std::string before =
      "HTTP/1.1 501 Not Implemented\r\nContent-Type: text/html\r\nConnection: close\r\n\r\n"
      "<html><head><title>501 - Not Implemented</title></head><body><h1>501 - Not Implemented</h1>"
      "<p>No handler exists to handle ";
  const std::string after = ".</p></body></html>";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"GET /x?y HTTP/1.1\r\nHost: localhost:8080\r\n", "http://localhost:8080/x?y"},
      {"HEAD /<b>&\" HTTP/1.0\r\nhost:127.0.0.1\r\n", "http://127.0.0.1/<b>&\""},
      {"PROPFIND /x HTTP/1.1\r\n", "/x"},
      {"GET http://elsewhere.example/x HTTP/1.1\r\nHost: localhost\r\n", "http://elsewhere.example/x"},
  };
  for (const auto& [head, url] : cases) {
    test::SocketClient client;
    client.send(head + "\r\n");
    EXPECT_EQ(client.receiveToEnd(), before + url + after);
  }
}

}  // namespace
}  // namespace quaverly
