#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSURL.h"
#include "Support/TestDevice.h"
#include "Support/TestPeer.h"

namespace quaverly {
namespace {

using namespace std::chrono_literals;
using test::TestPeer;
using testing::HasSubstr;

std::string contentsOf(const std::string& url, const NSDataLimits& limits = {}) {
  const auto parsed = NSURL::URLWithString(url);
  const auto data = parsed ? NSData::dataWithContentsOfURL(*parsed, limits) : std::nullopt;
  return data ? std::string(data->text()) : "nothing";
}

std::string redirectTo(const std::string& url) {
  return "HTTP/1.1 302 Found\r\nLocation: " + url + "\r\nContent-Length: 0\r\n\r\n";
}

TEST(FileContents, AreReadThroughTheMounts) {
  test::TestDevice device;
  device.temporary().write("tmp/a picture.png", "bytes");
  for (const auto* url : {"file://localhost/private/var/mobile/Media/Quaverly/tmp/a%20picture.png",
                          "file:///var/mobile/Media/Quaverly/tmp/a%20picture.png",
                          "file:/var/mobile/Media/Quaverly/tmp/../tmp/a%20picture.png",
                          "FILE://localhost/var/mobile/Media/Quaverly/tmp/a%20picture.png"})
    EXPECT_EQ(contentsOf(url), "bytes") << url;
}

TEST(FileContents, AreNothingForWhatIsNoFileOfTheDevice) {
  test::TestDevice device;
  device.media().makeFolder("folder");
  device.media().write("file", "bytes");
  for (const auto* url :
       {"file:///etc/hostname", "file://localhost/var/mobile/Media/absent", "file:///var/mobile/Media/folder",
        "file://elsewhere/var/mobile/Media/file", "file:///var/mobile/Media/%zz", "file:", "file://",
        "/var/mobile/Media/file", "ftp://localhost/var/mobile/Media/file", "data:,bytes", ""})
    EXPECT_EQ(contentsOf(url), "nothing") << url;
}

TEST(FileContents, HaveALimit) {
  test::TestDevice device;
  device.media().write("file", "bytes");
  EXPECT_EQ(contentsOf("file:///var/mobile/Media/file", {.fileBytes = 5}), "bytes");
  EXPECT_EQ(contentsOf("file:///var/mobile/Media/file", {.fileBytes = 4}), "nothing");
}

TEST(FileContents, OutliveTheFile) {
  test::TestDevice device;
  const auto path = device.media().write("file", "bytes");
  const auto data = NSData::dataWithContentsOfURL(*NSURL::URLWithString("file:///var/mobile/Media/file"));
  std::filesystem::resize_file(path, 0);
  EXPECT_EQ(data->text(), "bytes");
  EXPECT_FALSE(data->slice());
}

TEST(RemoteContents, AreTheBodyOfTheAnswer) {
  const std::string body(300'000, 'b');
  TestPeer peer([&](const std::string&) { return TestPeer::ok(body); });
  EXPECT_EQ(contentsOf(peer.url("/cover.png?size=1")), body);
  EXPECT_THAT(peer.lastHead(), HasSubstr("GET /cover.png?size=1 HTTP/1.1\r\n"));
}

TEST(RemoteContents, AreNothingForAnyAnswerButSuccess) {
  for (const auto* status :
       {"404 Not Found", "500 Oh", "204 No Content", "206 Partial Content", "304 Same"}) {
    TestPeer peer([&](const std::string&) {
      return std::string("HTTP/1.1 ") + status + "\r\nContent-Length: 4\r\n\r\npage";
    });
    EXPECT_EQ(contentsOf(peer.url("/")), "nothing") << status;
  }
  EXPECT_EQ(contentsOf("http://localhost:1/"), "nothing");
}

TEST(RemoteContents, AreNothingWhenTheyBreakOff) {
  TestPeer peer([](const std::string&) { return "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nonly"; });
  EXPECT_EQ(contentsOf(peer.url("/")), "nothing");
}

TEST(RemoteContents, HaveALimitWhetherTheirLengthIsAnnouncedOrNot) {
  const std::string body(1000, 'b');
  for (const bool isAnnounced : {true, false}) {
    TestPeer peer([&](const std::string&) {
      return isAnnounced ? TestPeer::ok(body) : "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + body;
    });
    EXPECT_EQ(contentsOf(peer.url("/"), {.remoteBytes = 1000}), body);
    EXPECT_EQ(contentsOf(peer.url("/"), {.remoteBytes = 999}), "nothing");
  }
}

TEST(RemoteContents, HaveATimeInWhichTheyMustCome) {
  TestPeer peer([](const std::string&) { return "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nonly"; },
                TestPeer::Afterwards::keepSilent);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(contentsOf(peer.url("/"), {.remoteTime = 200ms}), "nothing");
  EXPECT_GE(std::chrono::steady_clock::now() - start, 200ms);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST(RemoteContents, AreFollowedToAnotherPlace) {
  TestPeer peer([](const std::string& head) {
    return head.starts_with("GET /there ") ? TestPeer::ok("bytes") : redirectTo("/there");
  });
  EXPECT_EQ(contentsOf(peer.url("/here")), "bytes");
}

TEST(RemoteContents, AreNotFollowedForever) {
  TestPeer peer([](const std::string&) { return redirectTo("/again"); });
  EXPECT_EQ(contentsOf(peer.url("/")), "nothing");
  EXPECT_EQ(peer.requests(), 6U);
}

TEST(RemoteContents, AreNotFollowedToAFileOrAnotherProtocol) {
  test::TestDevice device;
  const auto path = device.media().write("file", "bytes");
  for (const auto& target : {"file://" + path, std::string("file:///var/mobile/Media/file"),
                             std::string("ftp://localhost/file"), std::string("gopher://localhost/file")}) {
    TestPeer peer([&](const std::string&) { return redirectTo(target); });
    EXPECT_EQ(contentsOf(peer.url("/")), "nothing") << target;
  }
}

TEST(RemoteContents, ComeOverNoProxyOfTheEnvironment) {
  ::setenv("http_proxy", "http://localhost:1", 1);
  TestPeer peer([](const std::string&) { return TestPeer::ok("bytes"); });
  EXPECT_EQ(contentsOf(peer.url("/")), "bytes");
}

}  // namespace
}  // namespace quaverly
