#include "Host/Library/Fetch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "Support/TestPeer.h"

namespace quaverly::library {
namespace {

using quaverly::test::TestPeer;
using testing::HasSubstr;
using testing::Not;

class Collector : public BodyReceiver {
 public:
  bool receive(std::span<const std::byte> bytes) override {
    body.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return body.size() < giveUpAt;
  }
  bool goesOn(uint64_t, uint64_t announced) override {
    total = announced;
    return !stopped;
  }

  std::string body;
  uint64_t total = 0;
  size_t giveUpAt = ~size_t{0};
  bool stopped = false;
};

/// No test waits longer than a second for a peer that stays silent.
constexpr FetchLimits shortLimits{.connecting = std::chrono::seconds(1), .stalling = std::chrono::seconds(1)};

TEST(Fetch, BringsTheWholeBody) {
  const std::string body(3'000'000, 'm');
  TestPeer peer([&](const std::string&) { return TestPeer::ok(body); });
  Collector collector;
  EXPECT_EQ(*fetch(peer.url("/song?/a%20b'(1).mp3"), shortLimits, collector), body.size());
  EXPECT_EQ(collector.body, body);
  EXPECT_EQ(collector.total, body.size());
}

TEST(Fetch, AsksForTheWholeFileOfTheVeryURL) {
  TestPeer peer([](const std::string&) { return TestPeer::ok("x"); });
  Collector collector;
  ASSERT_TRUE(fetch(peer.url("/song.mp3?/a%20b'(1)~+;,x.mp3"), shortLimits, collector));
  EXPECT_THAT(peer.lastHead(),
              testing::StartsWith("GET /song.mp3?/a%20b'(1)~+;,x.mp3 HTTP/1.1\r\nHost: localhost:"));
  EXPECT_THAT(peer.lastHead(), Not(HasSubstr("Range")));
}

TEST(Fetch, GoesPastAllProxies) {
  TestPeer proxy([](const std::string&) { return TestPeer::ok("from the proxy"); });
  TestPeer peer([](const std::string&) { return TestPeer::ok("from the peer"); });
  for (const auto* name : {"http_proxy", "all_proxy", "ALL_PROXY"}) setenv(name, proxy.url("").c_str(), 1);
  Collector collector;
  ASSERT_TRUE(fetch(peer.url("/"), shortLimits, collector));
  EXPECT_EQ(collector.body, "from the peer");
  EXPECT_EQ(proxy.requests(), 0U);
}

struct BadAnswer {
  const char* name;
  std::string answer;
  const char* reason;
};

TEST(Fetch, SaysWhatIsWrongWithABadAnswer) {
  const BadAnswer cases[] = {
      {"cut short", "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nonly this", "only 9 of 1000 bytes came"},
      {"nothing at all", "", "no proper answer"},
      {"no HTTP", "220 mail.example ESMTP\r\n", "no proper answer"},
      {"refused", "HTTP/1.1 501 Not Implemented\r\nContent-Length: 4\r\n\r\npage", "status 501"},
      {"redirect", "HTTP/1.1 302 Found\r\nLocation: http://localhost:1/\r\nContent-Length: 0\r\n\r\n",
       "status 302"},
      {"part", "HTTP/1.1 206 Partial Content\r\nContent-Length: 1\r\n\r\nx", "status 206"},
  };
  for (const auto& [name, answer, reason] : cases) {
    TestPeer peer([&](const std::string&) { return answer; });
    Collector collector;
    const auto bytes = fetch(peer.url("/"), shortLimits, collector);
    ASSERT_FALSE(bytes) << name;
    EXPECT_THAT(bytes.failure().reason, HasSubstr(reason)) << name;
  }
}

TEST(Fetch, GivesUpWhenNothingComesAnyMore) {
  TestPeer peer([](const std::string&) { return "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nonly this"; },
                TestPeer::Afterwards::keepSilent);
  Collector collector;
  const auto bytes = fetch(peer.url("/"), shortLimits, collector);
  ASSERT_FALSE(bytes);
  EXPECT_THAT(bytes.failure().reason, HasSubstr("stopped sending"));
}

TEST(Fetch, SaysWhenNobodyListens) {
  Collector collector;
  const auto bytes = fetch("http://localhost:1/", shortLimits, collector);
  ASSERT_FALSE(bytes);
  EXPECT_THAT(bytes.failure().reason, HasSubstr("does not answer"));
}

TEST(Fetch, EndsWhenTheReceiverHasHadEnough) {
  TestPeer peer([](const std::string&) { return TestPeer::ok(std::string(1'000'000, 'm')); });
  Collector collector;
  collector.giveUpAt = 100'000;
  EXPECT_FALSE(fetch(peer.url("/"), shortLimits, collector));
  EXPECT_LT(collector.body.size(), 200'000U);
}

TEST(Fetch, EndsAtOnceWhenItIsStopped) {
  TestPeer peer([](const std::string&) { return TestPeer::ok(std::string(1'000'000, 'm')); });
  Collector collector;
  collector.stopped = true;
  EXPECT_FALSE(fetch(peer.url("/"), shortLimits, collector));
}

TEST(Fetch, OpensNothingButHTTP) {
  for (const auto* url : {"file:///etc/hostname", "ftp://localhost/x", "gopher://localhost/x", ""}) {
    Collector collector;
    EXPECT_FALSE(fetch(url, shortLimits, collector)) << url;
    EXPECT_EQ(collector.body, "");
  }
}

}  // namespace
}  // namespace quaverly::library
