#include "Platform/Foundation/NSURL.h"

#include <gtest/gtest.h>

#include "Platform/Foundation/NSString.h"

namespace quaverly {
namespace {

constexpr std::string_view allowedInAQuery =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-./:;=?@_~";

TEST(PercentEncoding, LeavesExactlyTheCharactersAllowedInAQuery) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    const bool kept = NSStringByAddingPercentEscapesForQuery(text) == text;
    EXPECT_EQ(kept, allowedInAQuery.find(text[0]) != std::string_view::npos) << byte;
  }
}

TEST(PercentEncoding, EscapesTheBytesOfUTF8InUpperCase) {
  EXPECT_EQ(NSStringByAddingPercentEscapesForQuery("/var/mobile/Media/a b.mp3"),
            "/var/mobile/Media/a%20b.mp3");
  EXPECT_EQ(NSStringByAddingPercentEscapesForQuery("\u00E9#%\"[]"), "%C3%A9%23%25%22%5B%5D");
}

TEST(PercentEncoding, DecodingIsTheInverse) {
  std::string all;
  for (char c = 1; c < 127; ++c) all += c;
  all += "\u00E9\U0001F3B5";
  EXPECT_EQ(NSStringByRemovingPercentEncoding(NSStringByAddingPercentEscapesForQuery(all)), all);
  EXPECT_EQ(NSStringByRemovingPercentEncoding("%2Fvar%2fa%20b+c"), "/var/a b+c");
  EXPECT_EQ(NSStringByRemovingPercentEncoding(""), "");
}

TEST(PercentEncoding, DecodingYieldsNothingForABrokenEscape) {
  for (const char* text : {"%", "a%2", "%G0", "%0G", "%%20", "%-1", "%+1", "% 1", "%0x"})
    EXPECT_EQ(NSStringByRemovingPercentEncoding(text), std::nullopt) << text;
}

TEST(PercentEncoding, DecodingYieldsNothingForBytesThatAreNotUTF8) {
  EXPECT_EQ(NSStringByRemovingPercentEncoding("%FF"), std::nullopt);
  EXPECT_EQ(NSStringByRemovingPercentEncoding("caf\xE9"), std::nullopt);
  EXPECT_EQ(NSStringByRemovingPercentEncoding("%C3%A9"), "\u00E9");
}

TEST(NSURL, AnEmptyTextIsNoURL) {
  EXPECT_FALSE(NSURL::URLWithString(""));
}

TEST(NSURL, SpacesAndControlsAreNoURL) {
  for (const std::string text : {"a b", " a", "a\n", "a\x7F", "\t"}) EXPECT_FALSE(NSURL::URLWithString(text));
  EXPECT_FALSE(NSURL::URLWithString(std::string_view("a\0b", 3)));
}

TEST(NSURL, UnescapedQuotesBarsAnglesAndUTF8AreTakenAsTheyAre) {
  const auto url = NSURL::URLWithString("/a\"b|<c>\u00E9?\"|<>");
  ASSERT_TRUE(url);
  EXPECT_EQ(url->path(), "/a\"b|<c>\u00E9");
  EXPECT_EQ(url->query(), "\"|<>");
}

struct PartsCase {
  const char* text;
  std::optional<std::string> scheme, host, path, query;
};

TEST(NSURL, PartsAreFoundWhereTheyAreWritten) {
  constexpr auto none = std::nullopt;
  const PartsCase cases[] = {
      {"http://localhost:8080/x.mp3?/a%20b", "http", "localhost", "/x.mp3", "/a%20b"},
      {"HTTP://u:p@Host:80", "http", "Host", "", none},
      {"http://[::1]:8080/", "http", "::1", "/", none},
      {"http://[::1", "http", "::1", "", none},
      {"http://h?q", "http", "h", "", "q"},
      {"/var/mobile/a%20b.mp3", none, none, "/var/mobile/a b.mp3", none},
      {"/x?", none, none, "/x", ""},
      {"/x?a?b#f?g", none, none, "/x", "a?b"},
      {"/x#f", none, none, "/x", none},
      {"/x/", none, none, "/x/", none},
      {"/x;type=a", none, none, "/x;type=a", none},
      {"/a:b", none, none, "/a:b", none},
      {"1a:b", none, none, "1a:b", none},
      {"//h/p", none, "h", "/p", none},
      {"file:///a", "file", "", "/a", none},
      {"twitter:///user?screen_name=Tolmarin", "twitter", "", "/user", "screen_name=Tolmarin"},
      {"/a%2?x", none, none, none, "x"},
      {"/a%FF", none, none, none, none},
  };
  for (const auto& expected : cases) {
    const auto url = NSURL::URLWithString(expected.text);
    ASSERT_TRUE(url) << expected.text;
    EXPECT_EQ(url->absoluteString(), expected.text);
    EXPECT_EQ(url->scheme(), expected.scheme) << expected.text;
    EXPECT_EQ(url->host(), expected.host) << expected.text;
    EXPECT_EQ(url->path(), expected.path) << expected.text;
    EXPECT_EQ(url->query(), expected.query) << expected.text;
  }
}

TEST(NSURL, AFileURLHoldsTheEscapedPath) {
  const auto url = NSURL::fileURLWithPath("/a b/\u00E9?#;%.mp3");
  EXPECT_EQ(url.absoluteString(), "file:///a%20b/%C3%A9%3F%23%3B%25.mp3");
  EXPECT_EQ(url.path(), "/a b/\u00E9?#;%.mp3");
}

TEST(NSURL, ACopiedRequestKeepsItsOwnURL) {
  const NSURLRequest original(*NSURL::URLWithString("/a.mp3"));
  NSURLRequest copy = original;
  copy.setURL(*NSURL::URLWithString("http://localhost:8080/x"));
  EXPECT_EQ(original.URL().absoluteString(), "/a.mp3");
  EXPECT_EQ(copy.URL().absoluteString(), "http://localhost:8080/x");
}

}  // namespace
}  // namespace quaverly
