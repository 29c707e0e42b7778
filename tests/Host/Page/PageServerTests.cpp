#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <thread>

#include "Host/Page/HttpConnection.h"
#include "Host/Page/PageUnderTest.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Support/Descriptors.h"

namespace quaverly::page {
namespace {

using namespace std::chrono_literals;
using test::SocketClient;
using testing::HasSubstr;
using testing::IsEmpty;

class PageServerTest : public testing::Test {
 protected:
  void expectRefusal(const Answer& answer, const std::string& what) {
    EXPECT_EQ(answer.status, 403) << what;
    EXPECT_THAT(answer.body, HasSubstr("quaverly serve")) << what;
    EXPECT_EQ(answer.fields.count("Set-Cookie"), 0U) << what;
  }
  /// Whether the server has given this connection up.
  static bool ends(SocketClient& client) {
    return test::runLoopUntil([&] {
      client.received();
      return client.hasEnded() || client.isBroken();
    });
  }

  PageUnderTest page;
};

TEST_F(PageServerTest, TheTokenBringsACookieAndLeadsToAnAddressWithoutIt) {
  const auto answer = page.get("/?token=" + page.token(), {{"Cookie", ""},
                                                           {"Sec-Fetch-Site", "cross-site"},
                                                           {"Sec-Fetch-Mode", "navigate"},
                                                           {"Sec-Fetch-Dest", "document"}});
  EXPECT_EQ(answer.status, 200);
  EXPECT_THAT(answer.fields.at("Set-Cookie"), HasSubstr("quaverly-8181="));
  EXPECT_EQ(answer.fields.at("Refresh"), "0; url=/");
  EXPECT_EQ(answer.fields.at("Cache-Control"), "no-store");
  EXPECT_EQ(answer.fields.at("Referrer-Policy"), "no-referrer");
}

TEST_F(PageServerTest, WithTheCookieTheFilesAreServed) {
  const auto index = page.get("/");
  EXPECT_EQ(index.status, 200);
  EXPECT_EQ(index.body, "<p>the page</p>");
  EXPECT_EQ(index.fields.at("Content-Type"), "text/html; charset=utf-8");
  EXPECT_THAT(index.fields.at("Content-Security-Policy"), HasSubstr("script-src 'self'"));
  EXPECT_EQ(page.get("/style.css?v=1").fields.at("Content-Type"), "text/css; charset=utf-8");
}

TEST_F(PageServerTest, WhoeverIsNotTheBrowserThatWasOpenedGetsTheRefusalAlone) {
  const PageUnderTest::Fields strangers[] = {
      {{"Cookie", ""}},
      {{"Cookie", "quaverly-8181=" + page.token()}},
      {{"Host", "evil.example"}},
      {{"Host", "localhost:8181"}},
      {{"Host", ""}},
      {{"Origin", "http://evil.example"}},
      {{"Origin", "null"}},
      {{"Sec-Fetch-Site", "cross-site"}},
      {{"Sec-Fetch-Site", "same-site"}},
  };
  for (const auto& fields : strangers) {
    for (const auto* path : {"/", "/style.css", "/nothing", "/library/audio/1"}) {
      expectRefusal(page.get(path, fields), fields.begin()->first + " " + fields.begin()->second + path);
    }
  }
  expectRefusal(page.ask("POST /", {{"Content-Length", "2"}}, "hi"), "POST without an origin");
  expectRefusal(page.get("/?token=" + std::string(32, '0')), "a wrong token");
}

TEST_F(PageServerTest, AFieldThatStandsThereTwiceCountsAsForeign) {
  for (const auto* second : {"Host: 127.0.0.1:8181", "Cookie: a=b", "Origin: http://127.0.0.1:8181"}) {
    auto client = page.connect();
    auto request = page.request("GET /", {{"Origin", page.origin()}});
    request.insert(request.size() - 2, std::string(second) + "\r\n");
    client.send(request);
    const auto answer = answerIn(client.receiveToEnd().value_or(""));
    EXPECT_NE(answer.status, 200) << second;
  }
}

TEST_F(PageServerTest, WhatIsNotThereIsSaidToBe) {
  page.folder.write("later.txt", "not there when the server started");
  for (const auto* path : {"/none", "/later.txt", "/../secret", "/%2e%2e/secret", "/style.css/", "/%00",
                           "/%zz", "//style.css", "/./style.css"}) {
    EXPECT_EQ(page.get(path).status, 404) << path;
  }
}

TEST_F(PageServerTest, OtherMethodsAreTurnedAway) {
  for (const auto* method : {"PUT", "DELETE", "OPTIONS", "PATCH", "POST"}) {
    const auto answer = page.ask(std::string(method) + " /style.css", {{"Origin", page.origin()}});
    EXPECT_EQ(answer.status, 405) << method;
    EXPECT_EQ(answer.fields.at("Allow"), "GET, HEAD, POST");
  }
}

TEST_F(PageServerTest, HeadIsTheSameWithoutABody) {
  const auto answer = page.ask("HEAD /style.css");
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.fields.at("Content-Length"), "16");
  EXPECT_EQ(answer.body, "");
}

TEST_F(PageServerTest, AConnectionServesOneRequestAfterTheOther) {
  auto client = page.connect();
  client.send(page.request("GET /", {{"Connection", ""}}) + page.request("GET /style.css"));
  const auto all = client.receiveToEnd().value_or("");
  EXPECT_THAT(all, HasSubstr("<p>the page</p>HTTP/1.1 200 OK"));
  EXPECT_TRUE(all.ends_with("p { color: red }"));
}

TEST_F(PageServerTest, ALargeFileComesWholeAndInParts) {
  std::string large(3'000'000, 'x');
  large += "end";
  page.server.reset();
  page.folder.write("large.mp3", large);
  PageServer server({8182, page.folder.path()}, page.recorder);
  ASSERT_FALSE(server.start());
  const std::string host = "127.0.0.1:8182";
  SocketClient entering(SocketClient::loopback, 8182);
  entering.send(
      page.request("GET " + server.address().substr(server.address().find("/?")), {{"Host", host}}));
  const auto cookie = answerIn(entering.receiveToEnd().value_or("")).fields["Set-Cookie"];
  const PageUnderTest::Fields fields = {{"Host", host}, {"Cookie", cookie.substr(0, cookie.find(';'))}};
  SocketClient whole(SocketClient::loopback, 8182);
  whole.send(page.request("GET /large.mp3", fields));
  EXPECT_EQ(answerIn(whole.receiveToEnd().value_or("")).body, large);
  auto ranged = fields;
  ranged["Range"] = "bytes=2999999-";
  SocketClient part(SocketClient::loopback, 8182);
  part.send(page.request("GET /large.mp3", ranged));
  const auto answer = answerIn(part.receiveToEnd().value_or(""));
  EXPECT_EQ(answer.status, 206);
  EXPECT_EQ(answer.body, "xend");
}

TEST_F(PageServerTest, ARouteAnswersAtOnceOrLaterFromAnotherThread) {
  page.server->routes().add(PageMethod::get, "/now/", [](const PageRequest& request, const PageReply& reply) {
    PageAnswer answer;
    answer.body = NSData(request.rest + "|" + request.query);
    reply(answer);
  });
  std::thread worker;
  page.server->routes().add(PageMethod::get, "/later/", [&](const PageRequest&, const PageReply& reply) {
    worker = std::thread([reply] { reply(PageAnswer::message(200, "Later", "from a worker")); });
  });
  EXPECT_EQ(page.get("/now/a%20b/%C3%BC?q=%20").body, "a b/ü|q=%20");
  EXPECT_THAT(page.get("/later/").body, HasSubstr("from a worker"));
  worker.join();
}

TEST_F(PageServerTest, AnAnswerThatNobodyGivesIsAnError) {
  page.server->routes().add(PageMethod::get, "/never", [](const PageRequest&, const PageReply&) {});
  EXPECT_EQ(page.get("/never").status, 500);
}

TEST_F(PageServerTest, AnAnswerMayComeAfterTheBrowserOrTheServerIsGone) {
  std::vector<PageReply> replies;
  page.server->routes().add(PageMethod::get, "/slow",
                            [&](const PageRequest&, const PageReply& reply) { replies.push_back(reply); });
  auto client = page.connect();
  client.send(page.request("GET /slow"));
  EXPECT_TRUE(test::runLoopUntil([&] { return replies.size() == 1; }));
  client.close();
  page.server.reset();
  replies.front()(PageAnswer::notFound());
  test::settleLoop();
}

TEST_F(PageServerTest, APostIsTakenWholeByWhoAsksForIt) {
  std::string picked;
  page.server->routes().add(PageMethod::post, "/picked",
                            [&](const PageRequest& request, const PageReply& reply) {
                              picked = request.body;
                              reply(PageAnswer::message(200, "Thanks", request.query));
                            });
  const std::string picture(5'000'000, 'p');
  const PageUnderTest::Fields fields = {{"Origin", page.origin()},
                                        {"Content-Length", std::to_string(picture.size())}};
  EXPECT_EQ(page.ask("POST /picked?node=7", fields, picture).status, 200);
  EXPECT_EQ(picked, picture);
}

TEST_F(PageServerTest, ABodyThatIsTooLargeIsNotTaken) {
  bool isAsked = false;
  page.server->routes().add(PageMethod::post, "/picked",
                            [&](const PageRequest&, const PageReply&) { isAsked = true; });
  const std::string length = std::to_string(PageRoutes::maximumBody + 1);
  EXPECT_NE(page.ask("POST /picked", {{"Origin", page.origin()}, {"Content-Length", length}}).status, 200);
  EXPECT_FALSE(isAsked);
}

TEST_F(PageServerTest, AHeadThatTakesTooLongOrIsTooLongEndsTheConnection) {
  auto slow = page.connect();
  slow.send("GET / HTTP/1.1\r\nX: ");
  test::settleLoop();
  page.device.clock().advance(headLimit - 1s);
  slow.send("y");
  test::settleLoop();
  EXPECT_FALSE(slow.hasEnded());
  page.device.clock().advance(1s);
  EXPECT_TRUE(ends(slow));

  auto large = page.connect();
  large.send("GET / HTTP/1.1\r\nX: " + std::string(maximumHeadSize, 'y'));
  EXPECT_TRUE(ends(large));
}

TEST_F(PageServerTest, RubbishEndsTheConnectionAndNothingElse) {
  for (int first = 0; first < 256; ++first) {
    auto client = page.connect();
    client.send(std::string(1, static_cast<char>(first)) + std::string(20'000, '\xFF'));
    EXPECT_TRUE(ends(client)) << first;
  }
  EXPECT_EQ(page.get("/").status, 200);
}

TEST_F(PageServerTest, ABrowserThatReadsNothingIsGivenUp) {
  page.server->routes().add(PageMethod::get, "/large", [](const PageRequest&, const PageReply& reply) {
    PageAnswer answer;
    answer.body = NSData(std::string(50'000'000, 'x'));
    reply(answer);
  });
  const size_t before = test::openDescriptors();
  auto client = page.connect();
  client.send(page.request("GET /large"));
  test::settleLoop();
  EXPECT_EQ(page.get("/").status, 200);
  EXPECT_EQ(test::openDescriptors(), before + 2);
  page.device.clock().advance(progressLimit);
  EXPECT_TRUE(test::runLoopUntil([&] { return test::openDescriptors() == before + 1; }));
}

TEST_F(PageServerTest, ConnectionsThatSayNothingKeepNobodyOut) {
  const size_t before = test::openDescriptors();
  {
    std::vector<SocketClient> silent;
    for (size_t i = 0; i < 3 * PageSite::maximumConnections; ++i) {
      silent.push_back(page.connect());
      if (i % 50 == 0) test::settleLoop();
    }
    EXPECT_EQ(page.get("/").status, 200);
    EXPECT_LE(test::openDescriptors(), before + silent.size() + PageSite::maximumConnections);
  }
  EXPECT_TRUE(test::runLoopUntil([&] { return test::openDescriptors() <= before; }));
}

TEST_F(PageServerTest, TakesTheNextPortWhenNoneWasAskedFor) {
  PageServer second({std::nullopt, page.folder.path()}, page.recorder);
  ASSERT_FALSE(second.start());
  EXPECT_THAT(second.address(), testing::StartsWith("http://127.0.0.1:8182/?token="));
}

TEST_F(PageServerTest, SaysWhenThePortThatWasAskedForIsTaken) {
  PageServer second({uint16_t{8181}, page.folder.path()}, page.recorder);
  const auto failure = second.start();
  ASSERT_TRUE(failure);
  EXPECT_THAT(failure->reason, HasSubstr("8181"));
  EXPECT_THAT(failure->reason, HasSubstr("--page-port"));
}

TEST_F(PageServerTest, ListensOnTheLoopbackInterfaceAlone) {
  std::ifstream table("/proc/self/net/tcp");
  const std::string text((std::istreambuf_iterator<char>(table)), {});
  EXPECT_THAT(text, HasSubstr("0100007F:1FF5 00000000:0000 0A"));
  EXPECT_THAT(text, testing::Not(HasSubstr("00000000:1FF5 00000000:0000 0A")));
}

}  // namespace
}  // namespace quaverly::page
