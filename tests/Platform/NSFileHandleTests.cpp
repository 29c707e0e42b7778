#include "Platform/Foundation/NSFileHandle.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>

#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Foundation/Sockets/ConnectionAcceptor.h"
#include "Platform/Foundation/Sockets/Descriptor.h"
#include "Support/Descriptors.h"
#include "Support/NetworkNamespace.h"
#include "Support/SocketClient.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using namespace std::chrono_literals;
using test::runLoopUntil;
using test::settleLoop;
using test::SocketClient;

const NSData anyAddress(std::string("\x10\x02\x1F\x90\0\0\0\0\0\0\0\0\0\0\0\0", 16));

Ref<CFSocket> newSocket() {
  return CFSocketCreate(CFSocketFamily::inet, CFSocketType::stream, CFSocketProtocol::tcp);
}

/// Observes a listening handle and the connections that come from it.
class Observer : public NSObject {
 public:
  void observe(NSFileHandle* listener) {
    NSNotificationCenter::defaultCenter().addObserver(this, &Observer::accepted,
                                                      NSFileHandleConnectionAcceptedNotification, listener);
  }
  void accepted(const NSNotification& notification) {
    const auto item = notification.userInfo().find(NSFileHandleNotificationFileHandleItem);
    ASSERT_NE(item, notification.userInfo().end());
    connections.emplace_back(static_cast<NSFileHandle*>(item->second.get()));
    NSNotificationCenter::defaultCenter().addObserver(
        this, &Observer::dataAvailable, NSFileHandleDataAvailableNotification, item->second.get());
  }
  void dataAvailable(const NSNotification&) { ++availabilities; }

  std::vector<Ref<NSFileHandle>> connections;
  int availabilities = 0;
};

class NSFileHandleTest : public testing::Test {
 protected:
  NSFileHandleTest() {
    test::enterOwnNetwork();
    socket = newSocket();
    EXPECT_EQ(setsockopt(CFSocketGetNative(socket), CFSocketOption::reuseAddress, 1), 0);
    EXPECT_EQ(CFSocketSetAddress(socket, anyAddress), CFSocketError::success);
    listener = NSFileHandle::initWithFileDescriptorCloseOnDealloc(CFSocketGetNative(socket),
                                                                  NSFileHandle::CloseOnDealloc::yes);
    observer->observe(listener.get());
  }

  /// A client's connection, accepted.
  Ref<NSFileHandle> accept() {
    const size_t count = observer->connections.size();
    listener->acceptConnectionInBackgroundAndNotify();
    EXPECT_TRUE(runLoopUntil([&] { return observer->connections.size() > count; }));
    return observer->connections.back();
  }

  /// Lets the handle go, so that its connection ends.
  void drop(Ref<NSFileHandle>& handle) {
    std::erase(observer->connections, handle);
    handle = nullptr;
  }

  /// How many descriptors are open, those that the platform keeps from its first connection on included.
  size_t descriptorsAfterFirstConnection() {
    SocketClient client;
    auto handle = accept();
    EXPECT_TRUE(handle->writeData(NSData("x")));
    drop(handle);
    EXPECT_EQ(client.receiveToEnd(), "x");
    client.close();
    settleLoop();
    return test::openDescriptors();
  }

  NSData fileOfSize(size_t size) {
    std::string contents(size, '\0');
    for (size_t i = 0; i < size; ++i) contents[i] = static_cast<char>(i * 2654435761U >> 11);
    device.media().write("song.mp3", contents);
    return *NSData::dataWithContentsOfFile("/var/mobile/Media/song.mp3");
  }

  /// Advances the device's time, with the loop running in between.
  void pass(Clock::Duration time) {
    settleLoop();
    device.clock().advance(time);
    settleLoop();
  }

  test::TestDevice device;
  Ref<CFSocket> socket;
  Ref<NSFileHandle> listener;
  Ref<Observer> observer = make<Observer>();
};

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

TEST_F(NSFileHandleTest, WhatIsWrittenArrivesInOrderFromMemoryAndFromFiles) {
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

TEST_F(NSFileHandleTest, WhatIsWrittenArrivesThoughTheConnectionStaysOpen) {
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

TEST_F(NSFileHandleTest, WritingNeverWaitsForAClientThatDoesNotRead) {
  SocketClient client;
  auto handle = accept();
  const NSData large(std::string(20'000'000, 'x'));
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(handle->writeData(large));
  EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
  drop(handle);
}

TEST_F(NSFileHandleTest, AClientThatSendsAMegabyteAfterItsRequestLosesNothing) {
  SocketClient client;
  auto handle = accept();
  const auto file = fileOfSize(5'000'000);
  const std::string song(file.text());
  EXPECT_TRUE(handle->writeData(file));
  drop(handle);
  EXPECT_TRUE(client.send(std::string(1'000'000, 'x')));
  EXPECT_TRUE(client.receiveToEnd() == song);
}

TEST_F(NSFileHandleTest, AClientThatSendsAfterAShortAnswerLosesNothing) {
  SocketClient client;
  auto handle = accept();
  EXPECT_TRUE(handle->writeData(NSData("answer")));
  drop(handle);
  settleLoop();
  EXPECT_TRUE(client.send(std::string(1'000'000, 'x')));
  EXPECT_EQ(client.receiveToEnd(), "answer");
}

TEST_F(NSFileHandleTest, AClientThatHasNothingMoreToSayStillGetsItsAnswer) {
  SocketClient client;
  auto handle = accept();
  client.finishSending();
  const auto file = fileOfSize(5'000'000);
  const std::string song(file.text());
  EXPECT_TRUE(handle->writeData(file));
  drop(handle);
  EXPECT_TRUE(client.receiveToEnd() == song);
}

TEST_F(NSFileHandleTest, AClientThatReadsSlowlyGetsAll) {
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

TEST_F(NSFileHandleTest, AClientThatTakesNothingForAMinuteIsGivenUp) {
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

TEST_F(NSFileHandleTest, GivingUpIsSeenByTheWriterToo) {
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

TEST_F(NSFileHandleTest, AClientThatNeverEndsIsLeftAfterAFewSeconds) {
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

TEST_F(NSFileHandleTest, AClientThatHasNotTakenTheLastBytesIsNotLeftAfterAFewSeconds) {
  SocketClient client;
  auto handle = accept();
  // More than fits into the client's buffer, less than fits into both.
  const std::string answer(1'000'000, 'x');
  EXPECT_TRUE(handle->writeData(NSData(answer)));
  drop(handle);
  pass(30s);
  EXPECT_EQ(client.receiveToEnd(), answer);
}

TEST_F(NSFileHandleTest, WritingToAClientThatIsGoneIsAnErrorAndNoSignal) {
  SocketClient client;
  auto handle = accept();
  client.reset();
  settleLoop();
  const auto file = fileOfSize(100'000);
  EXPECT_FALSE(handle->writeData(file));
  EXPECT_FALSE(handle->writeData(NSData("x")));
  drop(handle);
}

TEST_F(NSFileHandleTest, AClientThatBreaksOffInTheMiddleLeavesNothingBehind) {
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

TEST_F(NSFileHandleTest, AFileThatShrinksEndsTheConnectionShort) {
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

TEST_F(NSFileHandleTest, AFileThatGrowsIsSentAsLongAsItWas) {
  SocketClient client;
  auto handle = accept();
  const auto file = fileOfSize(1'000'000);
  std::filesystem::resize_file(device.media() / "song.mp3", 2'000'000);
  EXPECT_TRUE(handle->writeData(file));
  drop(handle);
  EXPECT_EQ(client.receiveToEnd().value_or("").size(), 1'000'000U);
}

TEST_F(NSFileHandleTest, WithoutDescriptorsItWaitsIdlyAndRecovers) {
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

TEST_F(NSFileHandleTest, ClosingAndInvalidatingCloseTheSocketOnce) {
  listener->closeFile();
  EXPECT_EQ(CFSocketGetNative(socket), nullptr);
  const int other = ::open("/dev/null", O_RDONLY | O_CLOEXEC);  // gets the number that has become free
  CFSocketInvalidate(socket);
  socket = nullptr;
  listener = nullptr;
  EXPECT_GE(::fcntl(other, F_GETFD), 0);
  ::close(other);
}

TEST_F(NSFileHandleTest, InvalidatingTheSocketClosesItForTheHandleToo) {
  listener->acceptConnectionInBackgroundAndNotify();
  settleLoop();
  CFSocketInvalidate(socket);
  EXPECT_THROW(SocketClient(), std::runtime_error);
  const auto next = newSocket();
  EXPECT_EQ(CFSocketSetAddress(next, anyAddress), CFSocketError::success);
  listener->acceptConnectionInBackgroundAndNotify();
  listener->closeFile();
  SocketClient client;  // the next one still listens
  settleLoop();
  EXPECT_EQ(observer->connections.size(), 0U);
}

TEST_F(NSFileHandleTest, AHandleThatShallNotCloseLeavesTheSocketOpen) {
  listener = NSFileHandle::initWithFileDescriptorCloseOnDealloc(CFSocketGetNative(socket),
                                                                NSFileHandle::CloseOnDealloc::no);
  EXPECT_EQ(CFSocketGetNative(socket), nullptr);  // the first handle closed it
  socket = newSocket();
  listener = NSFileHandle::initWithFileDescriptorCloseOnDealloc(CFSocketGetNative(socket),
                                                                NSFileHandle::CloseOnDealloc::no);
  listener = nullptr;
  EXPECT_NE(CFSocketGetNative(socket), nullptr);
}

TEST_F(NSFileHandleTest, OnlyThePlatformsAddressesAreTaken) {
  std::string tooShort(15, '\0'), wrongLength(16, '\0'), wrongFamily(16, '\0');
  wrongFamily[0] = 16;
  wrongLength[1] = 2;
  for (const auto& address : {tooShort, wrongLength, wrongFamily, std::string(28, '\x10')}) {
    EXPECT_EQ(CFSocketSetAddress(newSocket(), NSData(address)), CFSocketError::error);
  }
  EXPECT_EQ(CFSocketSetAddress(newSocket(), anyAddress), CFSocketError::error);  // taken
}

TEST_F(NSFileHandleTest, ItsSocketsAreNotInherited) {
  SocketClient client;
  accept();
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int number = std::stoi(entry.path().filename());
    int type = 0;
    socklen_t size = sizeof type;
    if (::getsockopt(number, SOL_SOCKET, SO_TYPE, &type, &size) != 0) continue;
    EXPECT_TRUE(::fcntl(number, F_GETFD) & FD_CLOEXEC) << number;
  }
}

}  // namespace
}  // namespace quaverly
