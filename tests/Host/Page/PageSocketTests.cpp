#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Host/Page/PageUnderTest.h"
#include "Host/Page/WebSocketConnection.h"
#include "Support/Descriptors.h"

namespace quaverly::page {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class PageSocketTest : public testing::Test {
 protected:
  PageUnderTest page;
};

TEST_F(PageSocketTest, MessagesGoBothWaysInOrder) {
  RawWebSocket socket(page);
  ASSERT_EQ(socket.status(), 101);
  socket.sendText("a");
  socket.sendText("ü");
  socket.send(0x82, std::string("b\0c", 3));
  EXPECT_EQ(socket.receive()->payload, "echo a");
  EXPECT_EQ(socket.receive()->payload, "echo ü");
  EXPECT_TRUE(test::runLoopUntil([&] { return page.recorder.binaries.size() == 1; }));
  EXPECT_EQ(page.recorder.binaries.front(), std::string("b\0c", 3));
  EXPECT_THAT(page.recorder.messages, ElementsAre("a", "ü"));
}

TEST_F(PageSocketTest, OnlyThePageItselfMayOpenOne) {
  const PageUnderTest::Fields strangers[] = {
      {{"Cookie", ""}},
      {{"Origin", ""}},
      {{"Origin", "null"}},
      {{"Origin", "http://127.0.0.1:8182"}},
      {{"Origin", "http://localhost:8181"}},
      {{"Origin", "https://127.0.0.1:8181"}},
      {{"Host", "evil.example"}},
      {{"Sec-Fetch-Site", "same-site"}},
      {{"Sec-Fetch-Site", "cross-site"}},
  };
  for (const auto& fields : strangers) {
    RawWebSocket socket(page, fields);
    EXPECT_EQ(socket.status(), 403) << fields.begin()->first << " " << fields.begin()->second;
  }
  EXPECT_TRUE(page.recorder.open.empty());
}

TEST_F(PageSocketTest, TheTokenOpensNone) {
  auto client = page.connect();
  client.send(
      page.request("GET /?token=" + page.token(), {{"Connection", "Upgrade"},
                                                   {"Upgrade", "websocket"},
                                                   {"Origin", page.origin()},
                                                   {"Sec-WebSocket-Version", "13"},
                                                   {"Sec-WebSocket-Key", "dGhlIHNhbXBsZSBub25jZQ=="}}));
  EXPECT_EQ(answerIn(client.receiveToEnd().value_or("")).status, 403);
}

TEST_F(PageSocketTest, TheDelegateHearsOfAnEnd) {
  {
    RawWebSocket socket(page);
    ASSERT_EQ(page.recorder.open.size(), 1U);
  }
  EXPECT_TRUE(test::runLoopUntil([&] { return page.recorder.ended == 1; }));
  EXPECT_TRUE(page.recorder.open.empty());
}

TEST_F(PageSocketTest, AConnectionThatTheHostClosesIsToldLaterAndSendsNothingMore) {
  RawWebSocket socket(page);
  page.recorder.open.front()->close();
  EXPECT_EQ(page.recorder.ended, 0U);
  page.recorder.open.front()->send("too late");
  EXPECT_TRUE(socket.endsSoon());
  EXPECT_TRUE(test::runLoopUntil([&] { return page.recorder.ended == 1; }));
}

TEST_F(PageSocketTest, RubbishAndWhatIsTooLongEndTheConnectionAlone) {
  const std::string frames[] = {
      std::string(20, '\xff'),
      RawWebSocket::frame(0x81, std::string(maximumMessage + 1, 'x')),
      RawWebSocket::frame(0x81, "\xff\xfe"),  // no UTF-8
      std::string("\x81\x01x", 3),            // not masked
      std::string("\x81\xff\x7f\xff\xff\xff\xff\xff\xff\xffmask", 14),
      RawWebSocket::frame(0x80, "goes on with nothing"),
  };
  RawWebSocket honest(page);
  size_t ended = 0;
  for (const auto& frame : frames) {
    RawWebSocket socket(page);
    ASSERT_EQ(socket.status(), 101);
    socket.client().send(frame);
    EXPECT_TRUE(socket.endsSoon());
    socket.client().close();
    ++ended;
    EXPECT_TRUE(test::runLoopUntil([&] { return page.recorder.ended == ended; })) << page.recorder.ended;
  }
  EXPECT_TRUE(page.recorder.messages.empty());
  honest.sendText("still here");
  EXPECT_EQ(honest.receive()->payload, "echo still here");
}

TEST_F(PageSocketTest, AMessageOfTheLargestSizeArrives) {
  RawWebSocket socket(page);
  socket.sendText(std::string(maximumMessage, 'x'));
  EXPECT_TRUE(test::runLoopUntil([&] { return page.recorder.messages.size() == 1; }));
  EXPECT_EQ(page.recorder.messages.front().size(), maximumMessage);
}

TEST_F(PageSocketTest, APageThatSendsTooFastWaitsWhileOthersGoOn) {
  RawWebSocket fast(page), honest(page);
  page.recorder.answers = false;
  constexpr size_t count = 20'000;
  std::string frames;
  for (size_t i = 0; i < count; ++i) frames += RawWebSocket::frame(0x81, "{\"type\":\"tap\"}");
  fast.client().send(frames);
  test::settleLoop();
  EXPECT_EQ(page.recorder.messages.size(), messagesPerWindow);
  page.recorder.answers = true;
  honest.sendText("me too");
  EXPECT_EQ(honest.receive()->payload, "echo me too");
  page.recorder.answers = false;
  page.device.clock().advance(messageWindow);
  test::settleLoop();
  EXPECT_EQ(page.recorder.messages.size(), 2 * messagesPerWindow + 1);
  while (page.recorder.messages.size() < count + 1) {
    page.device.clock().advance(messageWindow);
    test::settleLoop();
  }
}

TEST_F(PageSocketTest, APageThatNeverReadsIsGivenUp) {
  RawWebSocket socket(page);
  auto& connection = *page.recorder.open.front();
  const std::string message(1'000'000, 'x');
  size_t sent = 0;
  while (connection.queuedBytes() + message.size() <= PageConnection::maximumQueue && sent < 64) {
    connection.send(message);
    test::settleLoop();
    ++sent;
  }
  EXPECT_LT(sent, 64U);
  EXPECT_EQ(page.recorder.ended, 0U);
  connection.send(message);
  EXPECT_TRUE(test::runLoopUntil([&] { return page.recorder.ended == 1; }));
}

TEST_F(PageSocketTest, APageThatStopsReadingIsGivenUpAfterAWhile) {
  RawWebSocket socket(page);
  auto& connection = *page.recorder.open.front();
  for (int i = 0; i < 7; ++i) connection.send(std::string(1'000'000, 'x'));
  test::settleLoop();
  ASSERT_GT(connection.queuedBytes(), 0U);
  page.device.clock().advance(sendLimit - 1s);
  test::settleLoop();
  EXPECT_EQ(page.recorder.ended, 0U);
  page.device.clock().advance(1s);
  EXPECT_TRUE(test::runLoopUntil([&] { return page.recorder.ended == 1; }));
}

TEST_F(PageSocketTest, ThereAreNotTooManyPages) {
  std::vector<std::unique_ptr<RawWebSocket>> sockets;
  for (size_t i = 0; i < PageSite::maximumWebSockets; ++i) {
    sockets.push_back(std::make_unique<RawWebSocket>(page));
    EXPECT_EQ(sockets.back()->status(), 101);
  }
  EXPECT_EQ(RawWebSocket(page).status(), 503);
  sockets.pop_back();
  EXPECT_TRUE(test::runLoopUntil([&] { return page.recorder.ended == 1; }));
  EXPECT_EQ(RawWebSocket(page).status(), 101);
}

TEST_F(PageSocketTest, NothingIsLeftBehindWhenTheServerEnds) {
  const size_t before = test::openDescriptors();
  RawWebSocket socket(page);
  page.server.reset();
  EXPECT_TRUE(socket.endsSoon());
  test::settleLoop();
  EXPECT_EQ(page.recorder.ended, 0U);
  EXPECT_EQ(test::openDescriptors(), before);  // the listener is gone, the client's own end is there
}

}  // namespace
}  // namespace quaverly::page
