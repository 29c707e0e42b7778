#include "Externals/HTTPServer/HTTPResponseHandler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include "Externals/HTTPServer/HTTPServer.h"
#include "Support/NetworkNamespace.h"
#include "Support/SocketClient.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using testing::ElementsAre;
using testing::Optional;
using testing::StartsWith;

using test::runLoopUntil;
using test::settleLoop;
using test::SocketClient;

std::vector<std::string> registeredNames() {
  std::vector<std::string> names;
  for (const auto* registered : HTTPResponseHandler::registeredHandlers())
    names.emplace_back(registered->name());
  return names;
}

/// Answers everything below "/held" and never finishes by itself.
class HoldingHandler : public HTTPResponseHandler {
 public:
  HoldingHandler() { ++living; }

  static unsigned priority() { return 5; }
  static bool canHandleRequestMethodUrlHeaderFields(const Ref<CFHTTPMessage>&, const std::string& method,
                                                    const std::optional<NSURL>& url,
                                                    const HTTPHeaderFields& headerFields) {
    asked = method + " " + url->absoluteString() + " " + headerFields.at("x-key");
    return url->path() == "/held";
  }
  void startResponse() override {
    last = this;
    EXPECT_TRUE(_fileHandle->writeData(NSData("held")));
  }
  void endResponse() override {
    ++ended;
    HTTPResponseHandler::endResponse();
  }
  void finish() { _server->closeHandler(this); }

  static inline HoldingHandler* last = nullptr;
  static inline std::string asked;
  static inline int living = 0, ended = 0;

 protected:
  ~HoldingHandler() override { --living; }
};

const HTTPResponseHandlerClassOf<HoldingHandler> holdingClass("Holding");
const std::string heldRequest = "GET /held HTTP/1.1\r\nHost: localhost\r\nX-Key: value\r\n\r\n";

template <unsigned level>
class PriorityHandler : public HTTPResponseHandler {
 public:
  static unsigned priority() { return level; }
};

TEST(HTTPResponseHandlerRegistry, TheBaseClassRegistersBeforeItsSubclassesAndSoComesLast) {
  EXPECT_THAT(registeredNames(), ElementsAre("QVFileResponse", "HTTPResponseHandler"));
}

TEST(HTTPResponseHandlerRegistry, HigherPrioritiesComeFirstAndLaterOnesFirstAmongEquals) {
  static const HTTPResponseHandlerClassOf<PriorityHandler<2>> two("two");
  static const HTTPResponseHandlerClassOf<PriorityHandler<1>> one("one"), otherOne("other one");
  static const HTTPResponseHandlerClassOf<HTTPResponseHandler> none("none");
  for (const HTTPResponseHandlerClass* each :
       std::initializer_list<const HTTPResponseHandlerClass*>{&one, &two, &otherOne, &none}) {
    HTTPResponseHandler::registerHandler(*each);
  }
  EXPECT_THAT(registeredNames(),
              ElementsAre("two", "other one", "one", "none", "QVFileResponse", "HTTPResponseHandler"));
}

TEST(HTTPResponseHandlerRegistry, TheSameClassTwiceIsTwoEntriesAndTheFirstWins) {
  HTTPResponseHandler::registerHandler(holdingClass);
  HTTPResponseHandler::registerHandler(holdingClass);
  EXPECT_THAT(registeredNames(), ElementsAre("Holding", "Holding", "QVFileResponse", "HTTPResponseHandler"));
  const auto url = NSURL::URLWithString("/held");
  EXPECT_EQ(
      HTTPResponseHandler::handlerClassForRequestMethodUrlHeaderFields(nullptr, "GET", url, {{"X-Key", ""}}),
      &holdingClass);
}

TEST(HTTPResponseHandlerRegistry, TheBaseTakesWhatNobodyElseTakes) {
  const auto* chosen = HTTPResponseHandler::handlerClassForRequestMethodUrlHeaderFields(
      nullptr, "GET", NSURL::URLWithString("/x"), {});
  ASSERT_NE(chosen, nullptr);
  EXPECT_EQ(chosen->name(), "HTTPResponseHandler");
  EXPECT_EQ(chosen->priority(), 0U);
}

class HTTPResponseHandlerTest : public testing::Test {
 protected:
  HTTPResponseHandlerTest() {
    test::enterOwnNetwork();
    HTTPResponseHandler::registerHandler(holdingClass);
    HTTPServer::sharedHTTPServer()->start();
  }
  ~HTTPResponseHandlerTest() override { HTTPServer::sharedHTTPServer()->stop(); }

  /// A client that a handler serves and will go on serving.
  static SocketClient heldClient() {
    SocketClient client;
    client.send(heldRequest);
    std::string got;
    EXPECT_TRUE(runLoopUntil([&] { return (got += client.received()) == "held"; }));
    return client;
  }

  test::TestDevice device;
};

TEST_F(HTTPResponseHandlerTest, EveryClassIsAskedWithWhatTheRequestSays) {
  auto client = heldClient();
  EXPECT_EQ(HoldingHandler::asked, "GET http://localhost/held value");
}

TEST_F(HTTPResponseHandlerTest, LivesUntilItTellsTheServerThatItIsDone) {
  auto client = heldClient();
  settleLoop();
  EXPECT_EQ(HoldingHandler::living, 1);
  EXPECT_FALSE(client.hasEnded());
  HoldingHandler::last->finish();
  EXPECT_EQ(HoldingHandler::living, 0);
  EXPECT_EQ(HoldingHandler::ended, 1);
  EXPECT_EQ(client.receiveToEnd(), "");
}

TEST_F(HTTPResponseHandlerTest, WhatComesAfterTheHeadIsReadAndIgnored) {
  auto client = heldClient();
  for (int i = 0; i < 5; ++i) {
    EXPECT_TRUE(client.send(std::string(100'000, 'x')));
    settleLoop();
  }
  EXPECT_EQ(HoldingHandler::living, 1);
  HoldingHandler::last->finish();
  EXPECT_EQ(client.receiveToEnd(), "");
}

TEST_F(HTTPResponseHandlerTest, AClientThatHangsUpEndsItAtOnce) {
  auto client = heldClient();
  client.close();
  EXPECT_TRUE(runLoopUntil([] { return HoldingHandler::living == 0; }));
  EXPECT_EQ(HoldingHandler::ended, 1);
}

TEST_F(HTTPResponseHandlerTest, AStoppedServerLetsGoOfItAndItEndsItself) {
  auto client = heldClient();
  HTTPServer::sharedHTTPServer()->stop();
  EXPECT_EQ(HoldingHandler::living, 0);
  EXPECT_EQ(client.receiveToEnd(), "");
}

TEST_F(HTTPResponseHandlerTest, MayEndItselfTwice) {
  auto client = heldClient();
  const Ref<HoldingHandler> handler(HoldingHandler::last);
  handler->finish();
  handler->endResponse();
  EXPECT_EQ(client.receiveToEnd(), "");
}

TEST_F(HTTPResponseHandlerTest, OthersAreServedMeanwhile) {
  auto client = heldClient();
  SocketClient other;
  other.send("GET /other HTTP/1.1\r\nX-Key: v\r\n\r\n");
  EXPECT_THAT(other.receiveToEnd(), Optional(StartsWith("HTTP/1.1 501 Not Implemented\r\n")));
  EXPECT_EQ(HoldingHandler::living, 1);
}

TEST_F(HTTPResponseHandlerTest, AnAnswerToAClientThatIsGoneIsDropped) {
  SocketClient client;
  client.send("GET /other HTTP/1.1\r\nX-Key: v\r\n");
  settleLoop();
  ::send(client.descriptor(), "\r\n", 2, MSG_NOSIGNAL);
  client.reset();
  settleLoop();
  auto next = heldClient();
}

}  // namespace
}  // namespace quaverly
