#include "Cores/QVFileResponse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Externals/HTTPServer/HTTPServer.h"
#include "Support/NetworkNamespace.h"
#include "Support/SocketClient.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

std::string headWithLength(size_t length) {
  return "HTTP/1.1 200 OK\r\n"
         "Content-Type: application/octet-stream\r\n"
         "Content-Disposition: attachment; filename=\"quaverly.mp3\"; filename*=UTF-8'quaverlymp3'\r\n"
         "Content-Length: " +
         std::to_string(length) + "\r\n\r\n";
}

class QVFileResponseTest : public testing::Test {
 protected:
  QVFileResponseTest() {
    test::enterOwnNetwork();
    HTTPServer::sharedHTTPServer()->start();
  }
  ~QVFileResponseTest() override { HTTPServer::sharedHTTPServer()->stop(); }

  /// The answer to a request line and further header lines.
  static std::string answer(const std::string& request, const std::string& fields = "") {
    test::SocketClient client;
    client.send(request + " HTTP/1.1\r\nHost: localhost:8080\r\n" + fields + "\r\n");
    return client.receiveToEnd().value_or("(broken off)");
  }
  static std::string get(const std::string& query, const std::string& fields = "") {
    return answer("GET /qvtolmarinimporter.mp3?" + query, fields);
  }

  test::TestDevice device;
};

TEST_F(QVFileResponseTest, ServesTheFileThatTheQueryNames) {
  const std::string song("some\0thing", 10);
  device.media().write("a b.mp3", song);
  EXPECT_EQ(get("/var/mobile/Media/a%20b.mp3"), headWithLength(10) + song);
  EXPECT_EQ(get("%2Fvar%2Fmobile%2FMedia%2Fa%20b.mp3"), headWithLength(10) + song);
}

TEST_F(QVFileResponseTest, StaysInFrontOfTheBaseClassThatAnswersEverything) {
  std::vector<std::string> names;
  for (const auto* registered : HTTPResponseHandler::registeredHandlers())
    names.emplace_back(registered->name());
  EXPECT_THAT(names, testing::ElementsAre("QVFileResponse", "HTTPResponseHandler"));
}

TEST_F(QVFileResponseTest, AnyNonEmptyRangeGetsTheFirstByteAloneAsAWholeAnswer) {
  device.media().write("x.mp3", "12345");
  for (const auto* range : {"bytes=0-", "bytes=3-4", "nonsense"}) {
    EXPECT_EQ(get("/var/mobile/Media/x.mp3", std::string("Range: ") + range + "\r\n"),
              headWithLength(1) + "1");
  }
  EXPECT_EQ(get("/var/mobile/Media/x.mp3", "rAnGe: x\r\n"), headWithLength(1) + "1");
}

TEST_F(QVFileResponseTest, ARangeOfNothingButWhiteSpaceIsNone) {
  device.media().write("x.mp3", "12345");
  EXPECT_EQ(get("/var/mobile/Media/x.mp3", "Range:\r\n"), headWithLength(5) + "12345");
  EXPECT_EQ(get("/var/mobile/Media/x.mp3", "Range: \t \r\n"), headWithLength(5) + "12345");
}

TEST_F(QVFileResponseTest, ARangeOfAnEmptyFileIsAnsweredLikeTheEmptyFile) {
  device.media().write("x.mp3", "");
  EXPECT_EQ(get("/var/mobile/Media/x.mp3"), headWithLength(0));
  EXPECT_EQ(get("/var/mobile/Media/x.mp3", "Range: bytes=0-0\r\n"), headWithLength(0));
}

TEST_F(QVFileResponseTest, OnlyGetSendsTheData) {
  device.media().write("x.mp3", "12345");
  for (const auto* method : {"HEAD", "POST", "get", "M-SEARCH"}) {
    EXPECT_EQ(answer(std::string(method) + " /qvtolmarinimporter.mp3?/var/mobile/Media/x.mp3"),
              headWithLength(5));
  }
  EXPECT_EQ(answer("HEAD /qvtolmarinimporter.mp3?/var/mobile/Media/x.mp3", "Range: x\r\n"),
            headWithLength(1));
}

TEST_F(QVFileResponseTest, WhatCannotBeReadIsAnEmptyAnswer) {
  device.media().makeFolder("folder");
  EXPECT_EQ(get("/var/mobile/Media/missing.mp3"), headWithLength(0));
  EXPECT_EQ(get("/var/mobile/Media/folder"), headWithLength(0));
  EXPECT_EQ(get("/etc/passwd"), headWithLength(0));
  EXPECT_EQ(get(""), headWithLength(0));
  EXPECT_EQ(get("%zz"), headWithLength(0));
  EXPECT_EQ(answer("GET /qvtolmarinimporter.mp3"), headWithLength(0));
}

TEST_F(QVFileResponseTest, OnlyTheExactPathIsItsOwn) {
  device.media().write("x.mp3", "12345");
  for (const auto* path :
       {"/qvtolmarinimporter.m4a", "/qvtolmarinimporter.MP3", "/qvtolmarinimporter.mp3/",
        "/qvtolmarinimporter.mp3;v=1", "//qvtolmarinimporter.mp3", "/qvtolmarinimporter", "/"}) {
    EXPECT_THAT(answer(std::string("GET ") + path + "?/var/mobile/Media/x.mp3"),
                testing::StartsWith("HTTP/1.1 501 Not Implemented\r\n"))
        << path;
  }
}

TEST_F(QVFileResponseTest, ThePathIsComparedDecoded) {
  device.media().write("x.mp3", "12345");
  EXPECT_EQ(answer("GET /qvtolmarin%69mporter%2Emp3?/var/mobile/Media/x.mp3"), headWithLength(5) + "12345");
}

TEST_F(QVFileResponseTest, ARequestForAnotherPathStillChangesWhichFileIsNext) {
  get("/var/mobile/Media/x.mp3");
  EXPECT_EQ(QVFileResponse::pathForFile(), "/var/mobile/Media/x.mp3");
  answer("GET /elsewhere?/a%20b");
  EXPECT_EQ(QVFileResponse::pathForFile(), "/a b");
  answer("GET /elsewhere?/broken%2");
  EXPECT_EQ(QVFileResponse::pathForFile(), std::nullopt);
  answer("GET /elsewhere?");
  EXPECT_EQ(QVFileResponse::pathForFile(), "");
  answer("GET /elsewhere");
  EXPECT_EQ(QVFileResponse::pathForFile(), std::nullopt);
}

TEST_F(QVFileResponseTest, TheQueryIsDecodedAsUTF8AndAPlusStaysAPlus) {
  answer("GET /elsewhere?/%C3%A9+1?x=%23");
  EXPECT_EQ(QVFileResponse::pathForFile(), "/é+1?x=#");
  answer("GET /elsewhere?/%E9");
  EXPECT_EQ(QVFileResponse::pathForFile(), std::nullopt);
}

TEST_F(QVFileResponseTest, NamesThatWereNotEscapedAreTakenAsTheyAre) {
  device.media().write("é\"<|>.mp3", "12345");
  EXPECT_EQ(get("/var/mobile/Media/é\"<|>.mp3"), headWithLength(5) + "12345");
}

TEST_F(QVFileResponseTest, LoadingTheClassAgainIsHarmless) {
  device.media().write("x.mp3", "12345");
  QVFileResponse::load();
  EXPECT_EQ(HTTPResponseHandler::registeredHandlers().size(), 3U);
  EXPECT_EQ(get("/var/mobile/Media/x.mp3"), headWithLength(5) + "12345");
}

TEST_F(QVFileResponseTest, AFileIsReadAnewForEachRequest) {
  device.media().write("x.mp3", "one");
  EXPECT_EQ(get("/var/mobile/Media/x.mp3"), headWithLength(3) + "one");
  device.media().write("x.mp3", "two2");
  EXPECT_EQ(get("/var/mobile/Media/x.mp3"), headWithLength(4) + "two2");
}

TEST_F(QVFileResponseTest, ALongPathWithoutASingleAsciiLetterFits) {
  std::string path, escaped;
  while (path.size() < 3900) {
    path += "/ééééééééééééééééé";
    escaped +=
        "/%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%"
        "C3%A9";
  }
  answer("GET /elsewhere?" + escaped);
  EXPECT_EQ(QVFileResponse::pathForFile(), path);
}

TEST_F(QVFileResponseTest, ALargeFileArrivesWhole) {
  std::string song(30'000'001, '\0');
  for (size_t i = 0; i < song.size(); ++i) song[i] = static_cast<char>(i * 2654435761U >> 13);
  device.media().write("x.mp3", song);
  const auto got = get("/var/mobile/Media/x.mp3");
  EXPECT_EQ(got.size(), headWithLength(song.size()).size() + song.size());
  EXPECT_TRUE(got == headWithLength(song.size()) + song);
}

}  // namespace
}  // namespace quaverly
