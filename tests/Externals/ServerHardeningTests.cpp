#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <filesystem>

#include "Externals/HTTPServer/HTTPServer.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Support/Descriptors.h"
#include "Support/NetworkNamespace.h"
#include "Support/SocketClient.h"
#include "Support/TestDevice.h"

// Whatever others do to the server, an honest client gets its file within a second.
namespace quaverly {
namespace {

using namespace std::chrono_literals;
using test::settleLoop;
using test::SocketClient;

std::string requestFor(const std::string& name) {
  return "GET /qvtolmarinimporter.mp3?/var/mobile/Media/" + name + " HTTP/1.1\r\nHost: localhost\r\n\r\n";
}

class ServerHardeningTest : public testing::Test {
 protected:
  ServerHardeningTest() {
    test::enterOwnNetwork();
    test::raiseDescriptorLimit();
    device.media().write("song.mp3", song);
    std::filesystem::resize_file(device.media().write("large.mp3", ""), 50'000'000);
    HTTPServer::sharedHTTPServer()->start();
    askHonestly();  // what is made once and kept is there from here on
    settleLoop();
  }
  ~ServerHardeningTest() override { HTTPServer::sharedHTTPServer()->stop(); }

  void askHonestly() {
    const auto start = std::chrono::steady_clock::now();
    SocketClient client;
    client.send(requestFor("song.mp3"));
    const auto answer = client.receiveToEnd().value_or("");
    EXPECT_TRUE(answer.ends_with(song));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
  }

  void expectNothingLeft(size_t descriptors) {
    EXPECT_TRUE(test::runLoopUntil([&] { return test::openDescriptors() <= descriptors; }));
    EXPECT_EQ(test::openDescriptors(), descriptors);
  }

  const std::string song = std::string(300'000, 's') + "end";
  test::TestDevice device;
};

TEST_F(ServerHardeningTest, AThousandClientsThatNeverFinishTheirHeads) {
  const size_t before = test::openDescriptors();
  {
    std::vector<SocketClient> clients(1'000);
    for (auto& client : clients) client.send("GET / HTTP/1.1\r\nX: ");
    askHonestly();
    for (int second = 0; second < 55; second += 11) {
      for (auto& client : clients) client.send("y");
      device.clock().advance(11s);
      askHonestly();
    }
    device.clock().advance(10s);
    EXPECT_TRUE(test::runLoopUntil([&] { return test::openDescriptors() == before + clients.size(); }));
    askHonestly();
  }
  expectNothingLeft(before);
}

TEST_F(ServerHardeningTest, TwoHundredClientsThatNeverReadALargeAnswer) {
  const size_t before = test::openDescriptors();
  {
    std::vector<SocketClient> clients(200);
    for (auto& client : clients) client.send(requestFor("large.mp3"));
    askHonestly();
    settleLoop();
    EXPECT_EQ(test::openDescriptors(), before + 3 * clients.size());
    device.clock().advance(59s);
    askHonestly();
    device.clock().advance(2s);
    EXPECT_TRUE(test::runLoopUntil([&] { return test::openDescriptors() == before + clients.size(); }));
    askHonestly();
  }
  expectNothingLeft(before);
}

TEST_F(ServerHardeningTest, ClientsThatBreakOffInTheMiddle) {
  const size_t before = test::openDescriptors();
  for (int round = 0; round < 20; ++round) {
    std::vector<SocketClient> clients(20);
    for (auto& client : clients) client.send(requestFor("large.mp3"));
    settleLoop();
    for (auto& client : clients) client.reset();
    askHonestly();
  }
  expectNothingLeft(before);
}

TEST_F(ServerHardeningTest, ClientsThatSendAMegabyteAfterTheirHeads) {
  const size_t before = test::openDescriptors();
  for (int round = 0; round < 20; ++round) {
    SocketClient client;
    ASSERT_TRUE(client.send(requestFor("song.mp3") + std::string(1'000'000, 'x')));
    EXPECT_TRUE(client.receiveToEnd().value_or("").ends_with(song));
    askHonestly();
  }
  expectNothingLeft(before);
}

TEST_F(ServerHardeningTest, ClientsThatNeverStopSending) {
  const size_t before = test::openDescriptors();
  {
    std::vector<SocketClient> clients(10);
    for (auto& client : clients) client.send(requestFor("song.mp3"));
    for (int i = 0; i < 20; ++i) {
      for (auto& client : clients) client.send(std::string(1'000'000, 'x'));
    }
    askHonestly();
    EXPECT_TRUE(test::runLoopUntil([&] {
      device.clock().advance(5s);
      for (auto& client : clients) client.received();
      return test::openDescriptors() == before + clients.size();
    }));
  }
  expectNothingLeft(before);
}

TEST_F(ServerHardeningTest, GarbageOfEveryKind) {
  const size_t before = test::openDescriptors();
  for (int first = 0; first < 256; ++first) {
    SocketClient client;
    client.send(std::string(1, static_cast<char>(first)) + std::string(70'000, '\xFF'));
  }
  askHonestly();
  expectNothingLeft(before);
}

/// How the clients of the longest test come and go.
void comeAndGo(int number) {
  SocketClient client;
  switch (number % 5) {
    case 0:  // nothing said
      break;
    case 1:
      client.send("GET /half HTTP");
      while (NSRunLoop::mainRunLoop().runOnce()) {
      }
      break;
    case 2:
      client.send("\xFF\r\n\r\n");
      EXPECT_EQ(client.receiveToEnd().value_or(""), "");
      return;
    case 3:
      client.send(requestFor("song.mp3"));
      client.reset();
      return;
    default:
      client.send("GET / HTTP/1.1\r\n\r\n");
      EXPECT_TRUE(client.receiveToEnd());
  }
}

TEST_F(ServerHardeningTest, AHundredThousandClientsThatComeAndGoLeaveNothingBehind) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  constexpr int rounds = 10'000;  // a sanitizer is ten times as slow, and finds what is left behind itself
#else
  constexpr int rounds = 100'000;
#endif
  for (int i = 0; i < rounds / 10; ++i) comeAndGo(i);
  settleLoop();
  const size_t descriptors = test::openDescriptors();
  const auto memory = mallinfo2().uordblks;
  for (int i = 0; i < rounds; ++i) {
    comeAndGo(i);
    if (i % 1'000 == 0) askHonestly();
  }
  expectNothingLeft(descriptors);
  settleLoop();
  EXPECT_LT(mallinfo2().uordblks, memory + 20'000);
}

}  // namespace
}  // namespace quaverly
