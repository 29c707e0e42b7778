#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Externals/HTTPServer/HTTPServer.h"
#include "Host/Library/ServiceUnderTest.h"
#include "Support/TagBytes.h"

namespace quaverly::library {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// Another program that listens on port 8080.
class PortHolder {
 public:
  explicit PortHolder(const std::string& program) {
    int ready[2];
    if (pipe(ready) != 0) throw std::runtime_error("no pipe");
    _process = fork();
    if (_process == 0) hold(program, ready[1]);
    close(ready[1]);
    char byte = 0;
    EXPECT_EQ(read(ready[0], &byte, 1), 1) << "the port could not be taken";
    close(ready[0]);
  }
  ~PortHolder() { leave(); }

  void leave() {
    if (_process <= 0) return;
    kill(_process, SIGKILL);
    waitpid(_process, nullptr, 0);
    _process = 0;
  }
  pid_t process() const { return _process; }

 private:
  [[noreturn]] static void hold(const std::string& program, int ready) {
    if (!program.empty()) prctl(PR_SET_NAME, program.c_str());
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    const int yes = 1;  // earlier connections of a test may still linger
    ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(HTTPServer::port);
    const bool holds = bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                       listen(listener, 4) == 0;
    if (holds && write(ready, "!", 1) == 1) pause();
    _exit(1);
  }

  pid_t _process = 0;
};

class ImportServerTest : public testing::Test {
 protected:
  std::string song() {
    under.device().media().write("song.mp3", songBytes(1));
    return "/var/mobile/Media/song.mp3";
  }

  ServiceUnderTest under;
};

TEST_F(ImportServerTest, AForeignProgramOnThePortIsNamedAndNeverAsked) {
  PortHolder holder("webby");
  const auto record = under.import({song(), {.title = "Title"}});
  EXPECT_EQ(record.state, DownloadState::failed);
  EXPECT_EQ(record.reason, "Port 8080 is taken by webby (process " + std::to_string(holder.process()) +
                               "). End that program, then try again.");
  EXPECT_THAT(under.allFiles(), IsEmpty());
  holder.leave();
  EXPECT_FALSE(under.service().retry(record.id));
  under.runUntilEnded(2);
  EXPECT_EQ(under.recorder().ended[1].state, DownloadState::filed) << under.recorder().ended[1].reason;
}

TEST_F(ImportServerTest, AnotherImportOfOursIsWaitedFor) {
  PortHolder holder("");  // and so this program's own name
  under.add({song(), {.title = "Title"}});
  ServiceUnderTest::runUntil([&] { return !under.recorder().waits.empty(); });
  EXPECT_THAT(under.recorder().waits[0], HasSubstr("uses port 8080. This import goes on when it is done."));
  EXPECT_THAT(under.recorder().ended, IsEmpty());
  holder.leave();
  under.runUntilEnded(1);
  EXPECT_EQ(under.recorder().ended[0].state, DownloadState::filed) << under.recorder().ended[0].reason;
  EXPECT_EQ(under.recorder().waits.size(), 1U);
}

TEST_F(ImportServerTest, WaitingForThePortCanBeStopped) {
  PortHolder holder("");
  under.add({song(), {.title = "Title"}});
  ServiceUnderTest::runUntil([&] { return !under.recorder().waits.empty(); });
  under.service().stop();
  ServiceUnderTest::runUntil([&] { return under.recorder().stopped; });
  EXPECT_EQ(under.recorder().notDone.size(), 1U);
}

TEST_F(ImportServerTest, ADuplicateNeedsNoServer) {
  under.import({song(), {.title = "Title"}});
  HTTPServer::sharedHTTPServer()->stop();
  PortHolder holder("webby");
  EXPECT_EQ(under.import({song(), {.title = "Title"}}).state, DownloadState::duplicate);
}

}  // namespace
}  // namespace quaverly::library
