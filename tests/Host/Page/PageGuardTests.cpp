#include <gtest/gtest.h>

#include "Host/Page/PageGuard.h"
#include "Host/Page/PageSecrets.h"

namespace quaverly::page {
namespace {

class PageGuardTest : public testing::Test {
 protected:
  /// What a browser sends that was opened with the printed address.
  RequestFacts arrival() const {
    RequestFacts facts = plain("/?token=" + token());
    facts.cookie.clear();
    return facts;
  }
  /// What its page sends from then on.
  RequestFacts plain(std::string target = "/") const {
    RequestFacts facts;
    facts.method = "GET";
    facts.target = std::move(target);
    facts.host = "127.0.0.1:8181";
    facts.fetchSite = "same-origin";
    facts.cookie = cookie();
    return facts;
  }
  RequestFacts webSocket() const {
    RequestFacts facts = plain("/socket");
    facts.wantsWebSocket = true;
    facts.origin = "http://127.0.0.1:8181";
    return facts;
  }
  std::string token() const { return guard.address().substr(guard.address().find('=') + 1); }
  std::string cookie() const {
    const auto field = guard.cookieField();
    return field.substr(0, field.find(';'));
  }

  PageGuard guard{8181};
};

TEST_F(PageGuardTest, TheAddressCarriesTheTokenAndTheCookieIsAnotherSecretForThisPort) {
  EXPECT_TRUE(guard.address().starts_with("http://127.0.0.1:8181/?token="));
  EXPECT_EQ(token().size(), 32U);
  EXPECT_TRUE(guard.cookieField().starts_with("quaverly-8181="));
  EXPECT_TRUE(guard.cookieField().ends_with("; Path=/; HttpOnly; SameSite=Strict"));
  EXPECT_EQ(guard.cookieField().find(token()), std::string::npos);
  EXPECT_NE(PageGuard(8181).address(), guard.address());
  EXPECT_NE(PageGuard(8181).cookieField(), guard.cookieField());
}

TEST_F(PageGuardTest, TheTokenLetsInAndTheCookieKeepsIn) {
  EXPECT_EQ(guard.judge(arrival()), Admission::enters);
  EXPECT_EQ(guard.judge(plain()), Admission::admitted);
  EXPECT_EQ(guard.judge(webSocket()), Admission::admitted);
}

TEST_F(PageGuardTest, AWrongTokenIsRefusedEvenWithTheCookie) {
  for (const auto& wrong : {std::string(), std::string(32, '0'), token() + "0", token().substr(1)}) {
    auto facts = plain("/?token=" + wrong);
    EXPECT_EQ(guard.judge(facts), Admission::refused) << wrong;
  }
}

TEST_F(PageGuardTest, WithoutTheRightCookieNothingIsAdmitted) {
  const std::string value = cookie().substr(cookie().find('=') + 1);
  for (const std::string& wrong :
       {std::string(), std::string("quaverly-8181="), "quaverly-8181=" + token(), value,
        "quaverly-8182=" + value, "x" + cookie(), cookie() + "0", std::string("?")}) {
    auto facts = plain();
    facts.cookie = wrong;
    EXPECT_EQ(guard.judge(facts), Admission::refused) << wrong;
  }
  auto among = plain();
  among.cookie = "a=b; quaverly-8181=old; " + cookie() + "; c=d";
  EXPECT_EQ(guard.judge(among), Admission::admitted);
}

TEST_F(PageGuardTest, AForeignHostIsRefusedWhateverElseIsRight) {
  for (const auto* host : {"", "127.0.0.1", "127.0.0.1:8182", "localhost:8181", "evil.example:8181",
                           "127.0.0.1:8181.evil.example", "127.0.0.1:08181", "?"}) {
    for (auto facts : {plain(), arrival(), webSocket()}) {
      facts.host = host;
      EXPECT_EQ(guard.judge(facts), Admission::refused) << host;
    }
  }
}

TEST_F(PageGuardTest, AForeignOriginIsRefusedWhateverElseIsRight) {
  for (const auto* origin : {"", "null", "https://127.0.0.1:8181", "http://127.0.0.1:8182",
                             "http://127.0.0.1", "http://localhost:8181", "http://evil.example", "?"}) {
    for (auto facts : {plain(), arrival(), webSocket()}) {
      facts.origin = origin;
      EXPECT_EQ(guard.judge(facts), Admission::refused) << origin;
    }
  }
}

TEST_F(PageGuardTest, WhatDoesMoreThanReadMustSayItsOrigin) {
  auto socket = webSocket();
  socket.origin.reset();
  EXPECT_EQ(guard.judge(socket), Admission::refused);
  auto post = plain("/picked");
  post.method = "POST";
  EXPECT_EQ(guard.judge(post), Admission::refused);
  post.origin = "http://127.0.0.1:8181";
  EXPECT_EQ(guard.judge(post), Admission::admitted);
}

TEST_F(PageGuardTest, PagesOfOtherSitesAndOtherPortsAreForeign) {
  for (const auto* site : {"cross-site", "same-site", "?", "anything"}) {
    auto facts = plain();
    facts.fetchSite = site;
    facts.fetchMode = "navigate";
    facts.fetchDestination = "document";
    EXPECT_EQ(guard.judge(facts), Admission::refused) << site;
  }
  for (const auto* site : {"same-origin", "none", ""}) {
    auto facts = plain();
    facts.fetchSite = site;
    EXPECT_EQ(guard.judge(facts), Admission::admitted) << site;
  }
}

TEST_F(PageGuardTest, OnlyATopLevelNavigationWithTheTokenMayComeFromElsewhere) {
  auto facts = arrival();
  facts.fetchSite = "cross-site";
  facts.fetchMode = "navigate";
  facts.fetchDestination = "document";
  EXPECT_EQ(guard.judge(facts), Admission::enters);
  auto framed = facts;
  framed.fetchDestination = "iframe";
  EXPECT_EQ(guard.judge(framed), Admission::refused);
  auto fetched = facts;
  fetched.fetchMode = "cors";
  EXPECT_EQ(guard.judge(fetched), Admission::refused);
  auto posted = facts;
  posted.method = "POST";
  EXPECT_EQ(guard.judge(posted), Admission::refused);
  auto wrong = facts;
  wrong.target = "/?token=" + std::string(32, 'a');
  EXPECT_EQ(guard.judge(wrong), Admission::refused);
  auto other = facts;
  other.target = "/index.html?token=" + token();
  EXPECT_EQ(guard.judge(other), Admission::refused);
}

TEST(PageSecrets, AreSameOnlyWhenEveryByteIs) {
  const std::string secret = makeSecret();
  EXPECT_TRUE(isSameSecret(secret, secret));
  EXPECT_FALSE(isSameSecret(secret, secret + "0"));
  for (size_t i = 0; i < secret.size(); ++i) {
    std::string other = secret;
    other[i] = other[i] == '0' ? '1' : '0';
    EXPECT_FALSE(isSameSecret(secret, other)) << i;
  }
}

TEST(PageGuard, LeavesTheUsualPortOfTheWebOutAsBrowsersDo) {
  EXPECT_EQ(PageGuard(80).host(), "127.0.0.1");
}

}  // namespace
}  // namespace quaverly::page
