#include "NSFileHandleFixture.h"

namespace quaverly {
namespace {

using namespace std::chrono_literals;
using test::runLoopUntil;
using test::settleLoop;
using test::SocketClient;

using NSFileHandleTest = test::NSFileHandleFixture;

TEST_F(NSFileHandleTest, AcceptsOneConnectionForEachRequestAndNeverInsideTheCall) {
  SocketClient first, second;
  listener->acceptConnectionInBackgroundAndNotify();
  EXPECT_EQ(observer->connections.size(), 0U);
  settleLoop();
  EXPECT_EQ(observer->connections.size(), 1U);
  listener->acceptConnectionInBackgroundAndNotify();
  settleLoop();
  EXPECT_EQ(observer->connections.size(), 2U);
}

TEST_F(NSFileHandleTest, AcceptsAClientThatComesLater) {
  listener->acceptConnectionInBackgroundAndNotify();
  settleLoop();
  SocketClient client;
  EXPECT_TRUE(runLoopUntil([&] { return observer->connections.size() == 1; }));
}

TEST_F(NSFileHandleTest, AnAcceptedHandleThatNobodyKeepsIsClosed) {
  SocketClient client;
  auto handle = accept();
  EXPECT_EQ(client.received(), "");
  EXPECT_FALSE(client.hasEnded());
  drop(handle);
  EXPECT_EQ(client.receiveToEnd(), "");
}

TEST_F(NSFileHandleTest, SaysOnceThatThereIsDataAndNeverInsideTheCall) {
  SocketClient client;
  const auto handle = accept();
  client.send("abc");
  handle->waitForDataInBackgroundAndNotify();
  EXPECT_EQ(observer->availabilities, 0);
  settleLoop();
  EXPECT_EQ(observer->availabilities, 1);
  EXPECT_EQ(handle->availableData().text(), "abc");
  client.send("def");
  settleLoop();
  EXPECT_EQ(observer->availabilities, 1);
  handle->waitForDataInBackgroundAndNotify();
  settleLoop();
  EXPECT_EQ(observer->availabilities, 2);
  EXPECT_EQ(handle->availableData().text(), "def");
  EXPECT_EQ(handle->availableData().length(), 0U);
}

TEST_F(NSFileHandleTest, WaitsForDataThatComesLater) {
  SocketClient client;
  const auto handle = accept();
  handle->waitForDataInBackgroundAndNotify();
  settleLoop();
  EXPECT_EQ(observer->availabilities, 0);
  client.send("abc");
  EXPECT_TRUE(runLoopUntil([&] { return observer->availabilities == 1; }));
  EXPECT_EQ(handle->availableData().text(), "abc");
}

TEST_F(NSFileHandleTest, AClientThatHangsUpReadsAsEmpty) {
  SocketClient client;
  const auto handle = accept();
  handle->waitForDataInBackgroundAndNotify();
  settleLoop();
  client.close();
  EXPECT_TRUE(runLoopUntil([&] { return observer->availabilities == 1; }));
  EXPECT_EQ(handle->availableData().length(), 0U);
}

TEST_F(NSFileHandleTest, AClientThatBreaksOffReadsAsEmpty) {
  SocketClient client;
  const auto handle = accept();
  handle->waitForDataInBackgroundAndNotify();
  settleLoop();
  client.reset();
  EXPECT_TRUE(runLoopUntil([&] { return observer->availabilities == 1; }));
  EXPECT_EQ(handle->availableData().length(), 0U);
}

TEST_F(NSFileHandleTest, AMinuteAfterBeingAcceptedAConnectionReadsAsEnded) {
  SocketClient client;
  const auto handle = accept();
  handle->waitForDataInBackgroundAndNotify();
  pass(59s);
  EXPECT_EQ(observer->availabilities, 0);
  pass(1s);
  EXPECT_EQ(observer->availabilities, 1);
  EXPECT_EQ(handle->availableData().length(), 0U);
}

TEST_F(NSFileHandleTest, BytesThatTrickleInDoNotPutTheMinuteOff) {
  SocketClient client;
  const auto handle = accept();
  for (int i = 0; i < 5; ++i) {
    handle->waitForDataInBackgroundAndNotify();
    pass(10s);
    client.send("x");
    settleLoop();
    ASSERT_EQ(observer->availabilities, i + 1);
    ASSERT_EQ(handle->availableData().text(), "x");
  }
  handle->waitForDataInBackgroundAndNotify();
  pass(10s);
  EXPECT_EQ(observer->availabilities, 6);
  client.send("x");
  settleLoop();
  EXPECT_EQ(handle->availableData().length(), 0U);
}

TEST_F(NSFileHandleTest, ADroppedHandleNotifiesNobody) {
  SocketClient client;
  auto handle = accept();
  handle->waitForDataInBackgroundAndNotify();
  settleLoop();
  drop(handle);
  client.send("x");
  pass(2min);
  EXPECT_EQ(observer->availabilities, 0);
}

TEST_F(NSFileHandleTest, AClosedHandleIsInert) {
  SocketClient client, next;
  const auto handle = accept();
  handle->waitForDataInBackgroundAndNotify();
  client.send("x");
  handle->closeFile();
  handle->closeFile();
  handle->waitForDataInBackgroundAndNotify();
  settleLoop();
  EXPECT_EQ(observer->availabilities, 0);
  EXPECT_EQ(handle->availableData().length(), 0U);
  EXPECT_FALSE(handle->writeData(NSData("x")));
  listener->acceptConnectionInBackgroundAndNotify();
  listener->closeFile();
  listener->acceptConnectionInBackgroundAndNotify();
  settleLoop();
  EXPECT_EQ(observer->connections.size(), 1U);
}

}  // namespace
}  // namespace quaverly
