#include "Platform/CFNetwork/CFHTTPMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace quaverly {
namespace {

using testing::ElementsAre;
using testing::Optional;
using testing::Pair;

/// A request of which these bytes have been read; null when it was refused.
Ref<CFHTTPMessage> reading(std::string_view bytes) {
  auto message = CFHTTPMessageCreateEmpty();
  return CFHTTPMessageAppendBytes(message, bytes) ? message : nullptr;
}

std::optional<std::string> urlOf(const Ref<CFHTTPMessage>& message) {
  const auto url = CFHTTPMessageCopyRequestURL(message);
  return url ? std::optional(url->absoluteString()) : std::nullopt;
}

TEST(CFHTTPMessage, KnowsNothingBeforeTheHeadIsComplete) {
  const auto message = reading("GET /x HTTP/1.1\r\nHost: localhost\r\n\r");
  EXPECT_FALSE(CFHTTPMessageIsHeaderComplete(message));
  EXPECT_EQ(CFHTTPMessageCopyRequestMethod(message), std::nullopt);
  EXPECT_EQ(urlOf(message), std::nullopt);
  EXPECT_TRUE(CFHTTPMessageCopyAllHeaderFields(message).empty());
  EXPECT_EQ(CFHTTPMessageCopyHeaderFieldValue(message, "Host"), std::nullopt);
  EXPECT_TRUE(CFHTTPMessageAppendBytes(message, "\n"));
  EXPECT_TRUE(CFHTTPMessageIsHeaderComplete(message));
  EXPECT_THAT(CFHTTPMessageCopyRequestMethod(message), Optional(std::string("GET")));
}

TEST(CFHTTPMessage, TakesAnyMethodToken) {
  for (const std::string method : {"GET", "get", "M-SEARCH", "X!#$%&'*+-.^_`|~9", "PRI"}) {
    const auto message = reading(method + " / HTTP/1.1\r\n\r\n");
    ASSERT_TRUE(message) << method;
    EXPECT_THAT(CFHTTPMessageCopyRequestMethod(message), Optional(method));
  }
}

TEST(CFHTTPMessage, MakesTheURLOfHostAndTarget) {
  struct Case {
    std::string target, fields;
    std::optional<std::string> url;
  };
  const std::vector<Case> cases{
      {"/x?y=1", "Host: localhost:8080\r\n", "http://localhost:8080/x?y=1"},
      {"/x", "HOST:\t localhost \r\n", "http://localhost/x"},
      {"/x", "", "/x"},
      {"/x", "Host:\r\n", "/x"},
      {"x/y", "Host: localhost\r\n", "http://localhostx/y"},
      {"x/y", "", "x/y"},
      {"*", "Host: localhost\r\n", "http://localhost*"},
      {"http://a.example/x", "Host: localhost\r\n", "http://a.example/x"},
      {"HTTP://a.example/x", "", "HTTP://a.example/x"},
      {"/x:y", "Host: localhost\r\n", "http://localhost/x:y"},
      {"/a\"b|c<d>e\\f^g`h{i}", "Host: localhost\r\n", "http://localhost/a\"b|c<d>e\\f^g`h{i}"},
      {"/Grüße?ä=ö", "Host: localhost\r\n", "http://localhost/Grüße?ä=ö"},
      {"/%zz", "Host: localhost\r\n", "http://localhost/%zz"},
  };
  for (const auto& [target, fields, url] : cases) {
    const auto message = reading("GET " + target + " HTTP/1.1\r\n" + fields + "\r\n");
    ASSERT_TRUE(message) << target;
    EXPECT_EQ(urlOf(message), url) << target;
  }
}

TEST(CFHTTPMessage, HeaderNamesAreFoundInAnyCaseAndDuplicatesAreJoined) {
  const auto message = reading(
      "GET / HTTP/1.1\r\nX-One: 1\r\nRange:  bytes=0-1 \r\nx-one:2\r\nEmpty:\r\nX-ONE:\t3\r\n"
      "Folded: a\r\n b\r\n\r\n");
  ASSERT_TRUE(message);
  EXPECT_THAT(CFHTTPMessageCopyAllHeaderFields(message),
              ElementsAre(Pair("Empty", ""), Pair("Folded", "a b"), Pair("Range", "bytes=0-1"),
                          Pair("X-One", "1, 2, 3")));
  EXPECT_THAT(CFHTTPMessageCopyHeaderFieldValue(message, "rANGE"), Optional(std::string("bytes=0-1")));
  EXPECT_THAT(CFHTTPMessageCopyHeaderFieldValue(message, "x-oNe"), Optional(std::string("1, 2, 3")));
  EXPECT_THAT(CFHTTPMessageCopyHeaderFieldValue(message, "empty"), Optional(std::string()));
  EXPECT_EQ(CFHTTPMessageCopyHeaderFieldValue(message, "X-On"), std::nullopt);
}

TEST(CFHTTPMessage, WhatIsSaidOfABodyPlaysNoPart) {
  for (const std::string fields :
       {"Content-Length: 99999999999999999999999\r\n", "Content-Length: -1\r\n", "Content-Length: x\r\n",
        "Content-Length: 1\r\nContent-Length: 2\r\n", "Transfer-Encoding: chunked\r\nContent-Length: 5\r\n",
        "Transfer-Encoding: gzip, nonsense\r\n", "Connection: upgrade\r\nUpgrade: websocket\r\n",
        "Connection: ,,close\r\n", "Expect: 100-continue\r\n"}) {
    const auto message = reading("POST /x HTTP/1.1\r\n" + fields + "\r\nrest");
    ASSERT_TRUE(message) << fields;
    EXPECT_TRUE(CFHTTPMessageIsHeaderComplete(message)) << fields;
    EXPECT_EQ(CFHTTPMessageCopyHeaderFieldValue(message, fields.substr(0, fields.find(':'))).has_value(),
              true);
  }
}

TEST(CFHTTPMessage, BytesAfterTheHeadAreKeptAndNotLookedAt) {
  const auto message = reading("GET / HTTP/1.1\r\n\r\n\n\r\x01 GET");
  ASSERT_TRUE(message);
  EXPECT_TRUE(CFHTTPMessageAppendBytes(message, std::string(200'000, '\n')));
  EXPECT_THAT(CFHTTPMessageCopyRequestMethod(message), Optional(std::string("GET")));
}

TEST(CFHTTPMessage, RefusesWhatIsMalformed) {
  const std::vector<std::string> heads{
      "\r\n\r\n",
      "GET\r\n\r\n",
      "GET /\r\n\r\n",
      "GET  HTTP/1.1\r\n\r\n",
      " GET / HTTP/1.1\r\n\r\n",
      "GET /a b HTTP/1.1\r\n\r\n",
      "GET  / HTTP/1.1\r\n\r\n",
      "GET / HTTP/1.1 \r\n\r\n",
      "GET /\tx HTTP/1.1\r\n\r\n",
      "GET / HTTP/2.0\r\n\r\n",
      "GET / HTTP/0.9\r\n\r\n",
      "GET / HTTP/11\r\n\r\n",
      "GET / http/1.1\r\n\r\n",
      "GET / HTTP/1.1x\r\n\r\n",
      "G(T / HTTP/1.1\r\n\r\n",
      "GET / HTTP/1.1\n\n",
      "GET / HTTP/1.1\r\nA: b\n\r\n",
      "GET / HTTP/1.1\r\nA: b\rc\r\n\r\n",
      "GET / HTTP/1.1\r\nno colon\r\n\r\n",
      "GET / HTTP/1.1\r\n: x\r\n\r\n",
      "GET / HTTP/1.1\r\nA : x\r\n\r\n",
      "GET / HTTP/1.1\r\nÄ: x\r\n\r\n",
      "GET / HTTP/1.1\r\n A: x\r\n\r\n",
      "GET / HTTP/1.1\r\nA: \x01\r\n\r\n",
      std::string("GET / HTTP/1.1\r\nA: \0\r\n\r\n", 24),
      std::string("GET /\0 HTTP/1.1\r\n\r\n", 20),
      "GET /\x7F HTTP/1.1\r\n\r\n",
      "\x16\x03\x01\x02\x01",
  };
  for (const auto& head : heads) {
    const auto message = CFHTTPMessageCreateEmpty();
    EXPECT_FALSE(CFHTTPMessageAppendBytes(message, head)) << head;
    EXPECT_FALSE(CFHTTPMessageIsHeaderComplete(message)) << head;
    EXPECT_FALSE(CFHTTPMessageAppendBytes(message, "GET / HTTP/1.1\r\n\r\n")) << head;
  }
}

TEST(CFHTTPMessage, RefusesABadRequestLineBeforeTheRestComes) {
  EXPECT_FALSE(reading("GET /\r\n"));
  EXPECT_FALSE(reading("GET / HTTP/3.0\r\nHo"));
  EXPECT_FALSE(reading("\x16\x03"));
  EXPECT_FALSE(reading("GET / HTTP/1.1\n"));
  EXPECT_TRUE(reading("GET / HTTP/1.1\r\nHo"));
  EXPECT_TRUE(reading("GET /a b"));  // the line may still be anything
}

TEST(CFHTTPMessage, AHeadMayHave64KiBAndNoMore) {
  const std::string begin = "GET / HTTP/1.1\r\nA: ", end = "\r\n\r\n";
  const std::string fitting = begin + std::string(65536 - begin.size() - end.size(), 'a') + end;
  EXPECT_TRUE(reading(fitting));
  EXPECT_TRUE(reading(fitting + "rest"));
  EXPECT_FALSE(reading(begin + "a" + fitting.substr(begin.size())));
  const auto endless = reading(fitting.substr(0, 65536 - end.size()));
  ASSERT_TRUE(endless);
  EXPECT_TRUE(CFHTTPMessageAppendBytes(endless, "aaaa"));
  EXPECT_FALSE(CFHTTPMessageAppendBytes(endless, "a"));
}

TEST(CFHTTPMessage, ALongTargetAndManyFieldsFit) {
  std::string target = "/x?";
  while (target.size() < 12'000) target += "%C3%A9";
  std::string fields;
  for (int i = 0; i < 1'000; ++i) fields += "X-" + std::to_string(i) + ": y\r\n";
  const auto message = reading("GET " + target + " HTTP/1.1\r\n" + fields + "\r\n");
  ASSERT_TRUE(message);
  EXPECT_EQ(urlOf(message), target);
  EXPECT_EQ(CFHTTPMessageCopyAllHeaderFields(message).size(), 1'000U);
}

TEST(CFHTTPMessage, AnswersForThisMachineOnly) {
  for (const auto* host :
       {"localhost", "LOCALHOST:8080", "localhost:", "my-machine_2", "127.0.0.1", "127.0.0.1:8080",
        "127.9.9.9", "127.1", "2130706433", "[::1]", "[::1]:8080", "[::ffff:127.0.0.1]:80", ""}) {
    EXPECT_TRUE(reading(std::string("GET / HTTP/1.1\r\nHost: ") + host + "\r\n\r\n")) << host;
  }
  for (const auto* host : {"evil.example",
                           "evil.example:8080",
                           "localhost.evil.example",
                           "localhost.",
                           "127.0.0.1.nip.example",
                           "192.0.2.1",
                           "192.0.2.1:8080",
                           "3221225985",
                           "[2001:db8::1]",
                           "[::ffff:192.0.2.1]",
                           "[::1",
                           "[::1]x",
                           "[]",
                           "user@localhost",
                           "localhost/x",
                           "localhost:80x",
                           "localhost, evil.example",
                           "::1",
                           "a b",
                           ":8080",
                           "[localhost]:80",
                           "127.0.0.1 x"}) {
    EXPECT_FALSE(reading(std::string("GET / HTTP/1.1\r\nHost: ") + host + "\r\n\r\n")) << host;
  }
  EXPECT_FALSE(reading("GET / HTTP/1.1\r\nHost: localhost\r\nhOST: evil.example\r\n\r\n"));
}

TEST(CFHTTPMessage, WhereAHeadIsCutDoesNotMatter) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::vector<std::string> heads{
      "GET /qvtolmarinimporter.mp3?/var/mobile/Media/a%20b.mp3 HTTP/1.1\r\nHost: localhost:8080\r\n"
      "Range: bytes=0-\r\nX: 1\r\nX: 2\r\n\r\nbody\r\n\r\n",
      "HEAD x HTTP/1.0\r\n\r\n",
      "GET / HTTP/1.1\r\nA: b\r\nHost: evil.example\r\n\r\n",
      "GET / HTTP/1.1\r\nA: b\r\nB\r\n\r\n",
      "GET / HTTP/1.1\r\nA: b\nB: c\r\n\r\n",
  };
  for (const auto& head : heads) {
    const auto whole = reading(head);
    for (int round = 0; round < 200; ++round) {
      const auto message = CFHTTPMessageCreateEmpty();
      bool isTaken = true;
      for (size_t at = 0; at < head.size();) {
        const size_t size = 1 + random() % (round < 100 ? 4 : head.size());
        isTaken = CFHTTPMessageAppendBytes(message, std::string_view(head).substr(at, size)) && isTaken;
        at += size;
      }
      ASSERT_EQ(isTaken, static_cast<bool>(whole)) << head;
      if (!whole) continue;
      ASSERT_EQ(urlOf(message), urlOf(whole));
      ASSERT_EQ(CFHTTPMessageCopyAllHeaderFields(message), CFHTTPMessageCopyAllHeaderFields(whole));
      ASSERT_EQ(CFHTTPMessageCopyRequestMethod(message), CFHTTPMessageCopyRequestMethod(whole));
    }
  }
}

TEST(CFHTTPMessage, ALargeHeadThatComesByteByByteIsLookedAtOnce) {
  // Were each byte to have the whole looked at anew, this would take two thousand million steps.
  const auto message = CFHTTPMessageCreateEmpty();
  for (int i = 0; i < 65'536; ++i) {
    ASSERT_TRUE(CFHTTPMessageAppendBytes(
        message,
        i < 20 ? std::string_view("GET / HTTP/1.1\r\nA: b").substr(static_cast<size_t>(i), 1) : "x"));
  }
  EXPECT_FALSE(CFHTTPMessageAppendBytes(message, "x"));
}

TEST(CFHTTPMessage, AResponseIsItsStatusLineItsFieldsInOrderAndItsBody) {
  const auto response = CFHTTPMessageCreateResponse(200, std::nullopt, kCFHTTPVersion1_1);
  CFHTTPMessageSetHeaderFieldValue(response, "Z-Last", "1");
  CFHTTPMessageSetHeaderFieldValue(response, "A-First", "2");
  CFHTTPMessageSetHeaderFieldValue(response, "z-last", "3");
  EXPECT_EQ(CFHTTPMessageCopySerializedMessage(response).text(),
            "HTTP/1.1 200 OK\r\nZ-Last: 3\r\nA-First: 2\r\n\r\n");
  CFHTTPMessageSetBody(response, "body");
  EXPECT_EQ(CFHTTPMessageCopySerializedMessage(response).text(),
            "HTTP/1.1 200 OK\r\nZ-Last: 3\r\nA-First: 2\r\n\r\nbody");
}

TEST(CFHTTPMessage, AResponseHasTheStandardDescriptionUnlessItIsGivenOne) {
  const auto text = [](int code, std::optional<std::string> description) {
    return std::string(
        CFHTTPMessageCopySerializedMessage(CFHTTPMessageCreateResponse(code, description, kCFHTTPVersion1_1))
            .text());
  };
  EXPECT_EQ(text(501, std::nullopt), "HTTP/1.1 501 Not Implemented\r\n\r\n");
  EXPECT_EQ(text(404, "Gone fishing"), "HTTP/1.1 404 Gone fishing\r\n\r\n");
}

}  // namespace
}  // namespace quaverly
