#include <filesystem>

#include "NSFileHandleFixture.h"
#include "Support/Descriptors.h"

namespace quaverly {
namespace {

using namespace std::chrono_literals;
using test::runLoopUntil;
using test::settleLoop;
using test::SocketClient;

using NSFileHandleWritingTest = test::NSFileHandleFixture;

TEST_F(NSFileHandleWritingTest, WhatIsWrittenArrivesInOrderFromMemoryAndFromFiles) {
  SocketClient client;
  auto handle = accept();
  const auto file = fileOfSize(3'000'000);
  const std::string song(file.text());
  EXPECT_TRUE(handle->writeData(NSData("head ")));
  EXPECT_TRUE(handle->writeData(file));
  EXPECT_TRUE(handle->writeData(NSData()));
  EXPECT_TRUE(handle->writeData(NSData(song)));
  EXPECT_TRUE(handle->writeData(file.subdataWithRange(1'000'000, 5)));
  EXPECT_TRUE(handle->writeData(NSData(" tail")));
  drop(handle);
  EXPECT_TRUE(client.receiveToEnd() == "head " + song + song + song.substr(1'000'000, 5) + " tail");
}

TEST_F(NSFileHandleWritingTest, WhatIsWrittenArrivesThoughTheConnectionStaysOpen) {
  SocketClient client;
  const auto handle = accept();
  std::string got;
  for (const auto* word : {"one ", "two "}) {
    EXPECT_TRUE(handle->writeData(NSData(word)));
    // At once, not after the fifth of a second that a full packet is waited for.
    EXPECT_TRUE(runLoopUntil([&] { return (got += client.received()).ends_with(word); }, 100ms));
  }
  EXPECT_EQ(got, "one two ");
  EXPECT_FALSE(client.hasEnded());
}

TEST_F(NSFileHandleWritingTest, WritingNeverWaitsForAClientThatDoesNotRead) {
  SocketClient client;
  auto handle = accept();
  const NSData large(std::string(20'000'000, 'x'));
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(handle->writeData(large));
  EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
  drop(handle);
}

TEST_F(NSFileHandleWritingTest, AClientThatSendsAMegabyteAfterItsRequestLosesNothing) {
  SocketClient client;
  auto handle = accept();
  const auto file = fileOfSize(5'000'000);
  const std::string song(file.text());
  EXPECT_TRUE(handle->writeData(file));
  drop(handle);
  EXPECT_TRUE(client.send(std::string(1'000'000, 'x')));
  EXPECT_TRUE(client.receiveToEnd() == song);
}

TEST_F(NSFileHandleWritingTest, AClientThatSendsAfterAShortAnswerLosesNothing) {
  SocketClient client;
  auto handle = accept();
  EXPECT_TRUE(handle->writeData(NSData("answer")));
  drop(handle);
  settleLoop();
  EXPECT_TRUE(client.send(std::string(1'000'000, 'x')));
  EXPECT_EQ(client.receiveToEnd(), "answer");
}

TEST_F(NSFileHandleWritingTest, AClientThatHasNothingMoreToSayStillGetsItsAnswer) {
  SocketClient client;
  auto handle = accept();
  client.finishSending();
  const auto file = fileOfSize(5'000'000);
  const std::string song(file.text());
  EXPECT_TRUE(handle->writeData(file));
  drop(handle);
  EXPECT_TRUE(client.receiveToEnd() == song);
}

TEST_F(NSFileHandleWritingTest, AClientThatReadsSlowlyGetsAll) {
  SocketClient client;
  auto handle = accept();
  EXPECT_TRUE(handle->writeData(fileOfSize(20'000'000)));
  drop(handle);
  size_t received = 0;
  for (int i = 0; i < 100 && !client.hasEnded(); ++i) {
    pass(50s);
    received += client.received().size();
  }
  EXPECT_EQ(received, 20'000'000U);
}

TEST_F(NSFileHandleWritingTest, AClientThatTakesNothingForAMinuteIsGivenUp) {
  const auto file = fileOfSize(20'000'000);
  const size_t before = descriptorsAfterFirstConnection();
  SocketClient client;
  auto handle = accept();
  EXPECT_TRUE(handle->writeData(file));
  drop(handle);
  pass(59s);
  EXPECT_EQ(test::openDescriptors(), before + 2);
  pass(2s);
  EXPECT_EQ(test::openDescriptors(), before + 1);
  client.received();
  EXPECT_TRUE(client.isBroken());
}

TEST_F(NSFileHandleWritingTest, GivingUpIsSeenByTheWriterToo) {
  SocketClient client;
  const auto handle = accept();
  EXPECT_TRUE(handle->writeData(NSData(std::string(20'000'000, 'x'))));
  handle->waitForDataInBackgroundAndNotify();
  pass(58s);
  EXPECT_TRUE(handle->writeData(NSData("x")));
  EXPECT_EQ(observer->availabilities, 0);
  pass(1min);
  EXPECT_FALSE(handle->writeData(NSData("x")));
  EXPECT_EQ(observer->availabilities, 1);
  EXPECT_EQ(handle->availableData().length(), 0U);
}

TEST_F(NSFileHandleWritingTest, AClientThatNeverEndsIsLeftAfterAFewSeconds) {
  const size_t before = descriptorsAfterFirstConnection();
  SocketClient client;
  auto handle = accept();
  EXPECT_TRUE(handle->writeData(NSData("answer")));
  drop(handle);
  pass(4s);
  EXPECT_EQ(test::openDescriptors(), before + 2);
  EXPECT_TRUE(runLoopUntil([&] {
    device.clock().advance(5s);  // once more when the client's system takes its time to confirm the bytes
    return test::openDescriptors() == before + 1;
  }));
  EXPECT_EQ(client.receiveToEnd(), "answer");
}

TEST_F(NSFileHandleWritingTest, AClientThatHasNotTakenTheLastBytesIsNotLeftAfterAFewSeconds) {
  SocketClient client;
  auto handle = accept();
  // More than fits into the client's buffer, less than fits into both.
  const std::string answer(1'000'000, 'x');
  EXPECT_TRUE(handle->writeData(NSData(answer)));
  drop(handle);
  pass(30s);
  EXPECT_EQ(client.receiveToEnd(), answer);
}

TEST_F(NSFileHandleWritingTest, WritingToAClientThatIsGoneIsAnErrorAndNoSignal) {
  SocketClient client;
  auto handle = accept();
  client.reset();
  settleLoop();
  const auto file = fileOfSize(100'000);
  EXPECT_FALSE(handle->writeData(file));
  EXPECT_FALSE(handle->writeData(NSData("x")));
  drop(handle);
}

TEST_F(NSFileHandleWritingTest, AClientThatBreaksOffInTheMiddleLeavesNothingBehind) {
  const auto file = fileOfSize(20'000'000);
  const size_t before = descriptorsAfterFirstConnection();
  SocketClient client;
  auto handle = accept();
  EXPECT_TRUE(handle->writeData(file));
  drop(handle);
  settleLoop();
  client.reset();
  EXPECT_TRUE(runLoopUntil([&] { return test::openDescriptors() == before; }));
}

TEST_F(NSFileHandleWritingTest, AFileThatShrinksEndsTheConnectionShort) {
  SocketClient client;
  auto handle = accept();
  const auto file = fileOfSize(20'000'000);
  EXPECT_TRUE(handle->writeData(NSData("head")));
  EXPECT_TRUE(handle->writeData(file));
  EXPECT_TRUE(handle->writeData(NSData("tail")));
  std::filesystem::resize_file(device.media() / "song.mp3", 10'000'000);
  drop(handle);
  const auto got = client.receiveToEnd();
  ASSERT_TRUE(got);
  EXPECT_EQ(got->size(), 10'000'004U);
  EXPECT_FALSE(got->ends_with("tail"));
}

TEST_F(NSFileHandleWritingTest, AFileThatGrowsIsSentAsLongAsItWas) {
  SocketClient client;
  auto handle = accept();
  const auto file = fileOfSize(1'000'000);
  std::filesystem::resize_file(device.media() / "song.mp3", 2'000'000);
  EXPECT_TRUE(handle->writeData(file));
  drop(handle);
  EXPECT_EQ(client.receiveToEnd().value_or("").size(), 1'000'000U);
}

}  // namespace
}  // namespace quaverly
