#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Externals/HTTPServer/HTTPServer.h"
#include "Support/ChildProcess.h"
#include "Support/NetworkNamespace.h"
#include "Support/SocketClient.h"
#include "Support/TestDevice.h"

// The server as a client sees it that many programs use.
namespace quaverly {
namespace {

class ServerCurlTest : public testing::Test {
 protected:
  ServerCurlTest() {
    test::enterOwnNetwork();
    for (size_t i = 0; i < song.size(); ++i) song[i] = static_cast<char>(i * 2654435761U >> 11);
    device.media().write("ä song.mp3", song);
    HTTPServer::sharedHTTPServer()->start();
  }
  ~ServerCurlTest() override { HTTPServer::sharedHTTPServer()->stop(); }

  /// How curl ends when it is called with these arguments; what it prints is in `output`.
  int exitStatusOf(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"curl", "-sS", "--max-time", "20"});
    test::ChildProcess child([&] {
      std::vector<char*> pointers;
      for (auto& argument : arguments) pointers.push_back(argument.data());
      pointers.push_back(nullptr);
      ::dup2(::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
      ::execvp("curl", pointers.data());
      return 127;
    });
    EXPECT_TRUE(test::runLoopUntil([&] { return child.exitStatus().has_value(); }, std::chrono::seconds(30)));
    return child.exitStatus().value_or(-1);
  }

  /// What curl prints; it must end without an error.
  std::string curl(std::vector<std::string> arguments) {
    EXPECT_EQ(exitStatusOf(std::move(arguments)), 0);
    return test::contentsOf(output);
  }

  const std::string url = "http://localhost:8080/qvtolmarinimporter.mp3?/var/mobile/Media/%C3%A4%20song.mp3";
  const std::string head =
      "HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\n"
      "Content-Disposition: attachment; filename=\"quaverly.mp3\"; filename*=UTF-8'quaverlymp3'\r\n"
      "Content-Length: ";
  std::string song = std::string(7'654'321, '\0');
  test::TestDevice device;
  test::TemporaryFolder folder;
  const std::string output = folder / "output";
};

TEST_F(ServerCurlTest, GetsTheWholeSong) {
  EXPECT_TRUE(curl({url}) == song);
  EXPECT_TRUE(curl({"--http1.0", url}) == song);
}

TEST_F(ServerCurlTest, GetsTheHeadAlone) {
  EXPECT_EQ(curl({"-I", url}), head + "7654321\r\n\r\n");
}

TEST_F(ServerCurlTest, GetsOneByteOfARange) {
  EXPECT_EQ(curl({"-i", "-r", "5-9", url}), head + "1\r\n\r\n" + song[0]);
}

TEST_F(ServerCurlTest, GetsTheFallbackThoughItSendsALargeBody) {
  const auto body = folder.write("body", std::string(3'000'000, 'x'));
  EXPECT_EQ(
      curl({"-w", "%{http_code}", "-o", "/dev/null", "--data-binary", "@" + body, "http://localhost:8080/x"}),
      "501");
}

TEST_F(ServerCurlTest, SeveralClientsAtOnceGetTheirSongs) {
  const auto name = [&](int i) { return folder / std::to_string(i); };
  std::vector<std::string> arguments{"--parallel", "--parallel-immediate"};
  for (int i = 0; i < 10; ++i) arguments.insert(arguments.end(), {"-o", name(i), url});
  curl(arguments);
  for (int i = 0; i < 10; ++i) EXPECT_TRUE(test::contentsOf(name(i)) == song) << i;
}

TEST_F(ServerCurlTest, IsTurnedAwayUnderABorrowedName) {
  const auto borrowed = "http://evil.example:8080" + url.substr(url.find('/', 7));
  constexpr int emptyReply = 52;
  EXPECT_EQ(exitStatusOf({"--resolve", "evil.example:8080:127.0.0.1", borrowed}), emptyReply);
}

}  // namespace
}  // namespace quaverly
