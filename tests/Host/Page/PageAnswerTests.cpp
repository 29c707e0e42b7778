#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Host/Page/AnswerPieces.h"
#include "Host/Page/PageAnswer.h"
#include "Host/Page/StaticFiles.h"
#include "Support/TemporaryFolder.h"

namespace quaverly::page {
namespace {

using testing::HasSubstr;
using testing::Not;

class FileAnswerTest : public testing::Test {
 protected:
  PageAnswer answerTo(const std::string& range, const std::string& ifNoneMatch = "") {
    return underConditions(file(), {range, ifNoneMatch});
  }
  PageAnswer file() { return *StaticFiles(folder.path()).file("song.mp3"); }
  static std::string sent(const PageAnswer& answer) {
    AnswerPieces pieces("", answer.body);
    std::string all;
    while (pieces.next()) all += pieces.piece();
    return all;
  }

  test::TemporaryFolder folder;
  const std::string path = folder.write("song.mp3", "0123456789");
};

TEST_F(FileAnswerTest, WithoutARangeItIsTheWholeFile) {
  EXPECT_EQ(answerTo("").status, 200);
  EXPECT_EQ(sent(answerTo("")), "0123456789");
  EXPECT_THAT(headOf(answerTo(""), "h", true), HasSubstr("Accept-Ranges: bytes\r\n"));
}

TEST_F(FileAnswerTest, ARangeIsAnsweredWithThatPart) {
  struct {
    const char *range, *part, *field;
  } const cases[] = {{"bytes=2-4", "234", "bytes 2-4/10"},    {"bytes=7-", "789", "bytes 7-9/10"},
                     {"bytes=-3", "789", "bytes 7-9/10"},     {"bytes=0-0", "0", "bytes 0-0/10"},
                     {"bytes=5-99", "56789", "bytes 5-9/10"}, {"bytes=-99", "0123456789", "bytes 0-9/10"}};
  for (const auto& [range, part, field] : cases) {
    const auto answer = answerTo(range);
    EXPECT_EQ(answer.status, 206) << range;
    EXPECT_EQ(sent(answer), part) << range;
    EXPECT_THAT(headOf(answer, "h", true), HasSubstr(std::string("Content-Range: ") + field + "\r\n"));
  }
}

TEST_F(FileAnswerTest, ARangeOutsideTheFileIsSaidToBe) {
  for (const auto* range : {"bytes=10-", "bytes=99-100", "bytes=-0"}) {
    const auto answer = answerTo(range);
    EXPECT_EQ(answer.status, 416) << range;
    EXPECT_EQ(answer.body.length(), 0U);
    EXPECT_THAT(headOf(answer, "h", true), HasSubstr("Content-Range: bytes */10\r\n"));
  }
}

TEST_F(FileAnswerTest, ARangeThatMeansNothingIsTheWholeFile) {
  for (const auto* range : {"bytes", "bytes=", "bytes=-", "bytes=a-b", "bytes=4-2", "bytes=0-1,3-4",
                            "lines=1-2", "bytes=1-x", "bytes=99999999999999999999-"}) {
    EXPECT_EQ(answerTo(range).status, 200) << range;
  }
}

TEST_F(FileAnswerTest, ABrowserThatHasItAlreadyGetsNoBody) {
  const auto tag = file().entityTag;
  EXPECT_EQ(answerTo("", "\"" + tag + "\"").status, 304);
  EXPECT_EQ(answerTo("", "\"x\", W/\"" + tag + "\"").body.length(), 0U);
  EXPECT_EQ(answerTo("", "\"x\"").status, 200);
  folder.write("song.mp3", "changed");
  EXPECT_EQ(answerTo("", "\"" + tag + "\"").status, 200);
}

TEST_F(FileAnswerTest, AFileThatShrinksIsNoticed) {
  const auto answer = file();
  folder.write("song.mp3", "0");
  AnswerPieces pieces("head", answer.body);
  EXPECT_FALSE(pieces.next());
  EXPECT_TRUE(pieces.isBroken());
}

TEST(AnswerPieces, AreBoundedAndComplete) {
  const std::string body(3 * AnswerPieces::pieceSize + 5, 'b');
  AnswerPieces pieces("head", NSData(body));
  std::string all;
  size_t count = 0;
  while (pieces.next()) {
    EXPECT_LE(pieces.piece().size(), AnswerPieces::pieceSize + 4);
    all += pieces.piece();
    ++count;
  }
  EXPECT_EQ(all, "head" + body);
  EXPECT_EQ(count, 4U);
  EXPECT_FALSE(pieces.isBroken());
}

TEST(PageAnswer, TellsBrowsersToTrustNothingButThisServer) {
  const auto head = headOf(PageAnswer::notFound(), "127.0.0.1:8181", false);
  EXPECT_TRUE(head.starts_with("HTTP/1.1 404 Not Found\r\n"));
  EXPECT_TRUE(head.ends_with("\r\n\r\n"));
  for (const auto* field :
       {"default-src 'none'", "script-src 'self';", "style-src 'self';",
        "connect-src 'self' ws://127.0.0.1:8181;", "frame-ancestors 'none'", "base-uri 'none'",
        "form-action 'none'", "X-Content-Type-Options: nosniff\r\n", "Referrer-Policy: no-referrer\r\n",
        "Cross-Origin-Resource-Policy: same-origin\r\n", "Cross-Origin-Opener-Policy: same-origin\r\n",
        "Connection: close\r\n", "Cache-Control: no-store\r\n"}) {
    EXPECT_THAT(head, HasSubstr(field));
  }
  EXPECT_THAT(head, Not(HasSubstr("unsafe")));
}

TEST(PageAnswer, MayHaveAPolicyOfItsOwn) {
  PageAnswer answer;
  answer.contentSecurityPolicy = "sandbox";
  const auto head = headOf(answer, "h", true);
  EXPECT_THAT(head, HasSubstr("Content-Security-Policy: sandbox\r\n"));
  EXPECT_THAT(head, Not(HasSubstr("default-src")));
}

TEST(StaticFiles, TellTheTypesThatBrowsersNeed) {
  EXPECT_EQ(contentTypeOf("index.html"), "text/html; charset=utf-8");
  EXPECT_EQ(contentTypeOf("a/b.js"), "text/javascript; charset=utf-8");
  EXPECT_EQ(contentTypeOf("x.woff2"), "font/woff2");
  EXPECT_EQ(contentTypeOf("x"), "application/octet-stream");
}

}  // namespace
}  // namespace quaverly::page
