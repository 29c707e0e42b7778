#include "Host/Mail/HtmlCleaning.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <regex>

namespace quaverly::host {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Case {
  const char* html;
  const char* clean;
};

class Cleaning : public testing::TestWithParam<Case> {};

TEST_P(Cleaning, KeepsWhatIsSeenAndNothingElse) {
  EXPECT_EQ(cleanedHtml(GetParam().html), GetParam().clean);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, Cleaning,
    testing::Values(
        Case{"", ""}, Case{"plain", "plain"}, Case{"<p>a</p>", "<p>a</p>"},
        Case{"a &lt; b &amp; \"c\"", "a &lt; b &amp; &quot;c&quot;"}, Case{"<p>&nbsp;</p>", "<p>&nbsp;</p>"},
        Case{"<p>Grüße 音 🎵</p>", "<p>Grüße 音 🎵</p>"},
        Case{"<p>a<script>alert(1)</script>b</p>", "<p>ab</p>"},
        Case{"<p onclick=\"alert(1)\" id=x class=y>a</p>", "<p>a</p>"},
        Case{"<img src=x onerror=alert(1)>a", "a"}, Case{"<img src=\"https://t.example/x.gif\">a", "a"},
        Case{"<a href=\"https://a.example/?b=1&amp;c=2\">x</a>",
             "<a href=\"https://a.example/?b=1&amp;c=2\">x</a>"},
        Case{"<a href=\"mailto:a@b.example\">x</a>", "<a href=\"mailto:a@b.example\">x</a>"},
        Case{"<a href=\"javascript:alert(1)\">x</a>", "<a>x</a>"},
        Case{"<a href=\"java&#9;script:alert(1)\">x</a>", "<a>x</a>"},
        Case{"<a href=\" https://a.example\">x</a>", "<a>x</a>"},
        Case{"<a href=\"data:text/html,x\">x</a>", "<a>x</a>"}, Case{"<a href=\"/local\">x</a>", "<a>x</a>"},
        Case{"<a href=\"file:///etc/passwd\">x</a>", "<a>x</a>"}, Case{"a<!-- hidden -->b", "ab"},
        Case{"<iframe src=\"https://a.example\">x</iframe>b", "b"},
        Case{"<svg><script>alert(1)</script></svg>b", "b"}, Case{"<math><mi>x</mi></math>b", "b"},
        Case{"<object data=x><p>y</p></object>b", "b"}, Case{"<textarea>x</textarea>b", "b"},
        Case{"<form action=x><p>y</p></form>", "<p>y</p>"},
        Case{"<meta http-equiv=refresh content=\"0;url=https://a.example\">b", "b"},
        Case{"<base href=\"https://a.example\">b", "b"}, Case{"<link rel=stylesheet href=x>b", "b"},
        Case{"<p style=\"color:red;position:fixed\">a</p>", "<p style=\"color:red;\">a</p>"},
        Case{"<p style=\"display:none\">a</p>", "<p>a</p>"},
        Case{"<p style=\"background-color: rgb(1, 2, 3)\">a</p>",
             "<p style=\"background-color: rgb(1, 2, 3);\">a</p>"},
        Case{"<p style=\"background-color:url(https://a.example)\">a</p>", "<p>a</p>"},
        Case{"<p style=\"color:\\72 ed;color:expression(alert(1))\">a</p>", "<p>a</p>"},
        Case{"<p style=\"font-family:'A;color:red\">a</p>", "<p style=\"color:red;\">a</p>"},
        Case{"<style>@import url(x);p{margin:0}</style>a", "a"},
        Case{"<style>p{margin:0;background:url(x)} a[href]{color:red} b{color:red}</style>a",
             "<style>p{margin:0;}b{color:red;}</style>a"},
        Case{"<table><tr><td colspan=2 width=9>a</td></tr></table>",
             "<table><tr><td colspan=\"2\">a</td></tr></table>"},
        Case{"<p dir=rtl lang=he>a<br>b</p><hr>", "<p dir=\"rtl\">a<br>b</p><hr>"},
        Case{"<custom-thing><b>a</b></custom-thing>", "<b>a</b>"}, Case{"<p>a<b>c", "<p>a<b>c</b></p>"}));

TEST(HtmlCleaning, LeavesASupportMailAsItIs) {
  const std::string body =
      "<style>p{margin-top: 0em;margin-bottom: 0.1em;}</style><p>&nbsp;</p><p>&nbsp;</p>"
      "<p><span style=\"font-family:Arial;font-size:11px;\"><strong>Device:</strong> iPhone 6+</span></p>";
  EXPECT_EQ(cleanedHtml(body), body);
}

TEST(HtmlCleaning, RefusesWhatIsTooLongOrTooDeepRatherThanCutIt) {
  EXPECT_EQ(cleanedHtml(std::string(longestHtml, 'a')), std::string(longestHtml, 'a'));
  EXPECT_EQ(cleanedHtml(std::string(longestHtml + 1, 'a')), std::nullopt);
  std::string deep;
  for (int level = 0; level < 100'000; ++level) deep += "<div>";
  EXPECT_EQ(cleanedHtml(deep + "end"), std::nullopt);
}

TEST(HtmlCleaning, ReadsBytesThatAreNoText) {
  using namespace std::string_literals;
  EXPECT_EQ(cleanedHtml("a\xff"s + "b"), "a\uFFFDb");
  EXPECT_EQ(cleanedHtml("a\0b"s), "a b");
}

/// Bodies of pieces that matter, put together at random.
std::string madeUp(std::mt19937& random) {
  static constexpr std::array<const char*, 30> pieces = {
      "<p>",        "</p>",        "<script>", "</script>",   "<style>",     "</style>",
      "<a href=\"", "\">",         "'",        "\"",          "<!--",        "-->",
      "&lt;",       "&#60;",       "&quot;",   "javascript:", " onerror=x ", "<svg>",
      "</svg>",     "<img src=x>", "<",        ">",           "x",           "{color:red}",
      "url(y)",     "<td>",        "<br/",     "\xc2\xa0",    "<![CDATA[",   "<textarea>"};
  std::string body;
  for (size_t count = random() % 40; count > 0; --count) body += pieces[random() % pieces.size()];
  return body;
}

/// Where a tag begins that is not written in the one form that tags have here, or npos.
size_t oddTag(const std::string& html) {
  static const std::regex tag(R"(</?[a-z][a-z0-9]*( (style|dir|href|colspan|rowspan)="[^"<>]*")*>)");
  for (size_t at = html.find('<'); at != std::string::npos; at = html.find('<', at + 1)) {
    const auto begin = html.begin() + static_cast<std::ptrdiff_t>(at);
    if (!std::regex_search(begin, html.end(), tag, std::regex_constants::match_continuous)) return at;
  }
  return std::string::npos;
}

TEST(HtmlCleaning, OfAnythingHasOnlyOneReading) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 5'000; ++round) {
    const std::string body = madeUp(random);
    const auto clean = cleanedHtml(body);
    ASSERT_TRUE(clean) << body;
    for (const char* never : {"<script", "<svg", "<img", "<!--", "href=\"java", "<textarea"})
      ASSERT_THAT(*clean, Not(HasSubstr(never))) << body;
    ASSERT_EQ(oddTag(*clean), std::string::npos) << *clean;
  }
}

}  // namespace
}  // namespace quaverly::host
