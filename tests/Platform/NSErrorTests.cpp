#include "Platform/Foundation/NSError.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Platform/Foundation/NSLog.h"

namespace quaverly {
namespace {

TEST(NSError, PrintsDomainCodeDescriptionAndUserInfo) {
  const auto error = make<NSError>(
      "HTTPServerError", 0, std::map<std::string, std::string>{{NSLocalizedDescriptionKey, "No \"luck\"."}});
  EXPECT_EQ(error->localizedDescription(), "No \"luck\".");
  EXPECT_EQ(
      error->description(),
      "Error Domain=HTTPServerError Code=0 \"No \"luck\".\" UserInfo={NSLocalizedDescription=No \"luck\".}");
}

TEST(NSError, WithoutADescriptionSaysWhichErrorItIs) {
  const auto error = make<NSError>("Domain", 7, std::map<std::string, std::string>{});
  EXPECT_EQ(error->localizedDescription(), "The operation couldn’t be completed. (Domain error 7.)");
  EXPECT_EQ(error->description(), "Error Domain=Domain Code=7 \"(null)\"");
}

TEST(NSLog, WritesALineToItsSinkAndToStandardErrorWithoutOne) {
  std::vector<std::string> lines;
  setLogSink([&](std::string_view line) { lines.emplace_back(line); });
  NSLog("a \"quoted\" word");
  EXPECT_EQ(lines, std::vector<std::string>{"a \"quoted\" word"});
  setLogSink(nullptr);
  testing::internal::CaptureStderr();
  NSLog("plain");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "plain\n");
}

}  // namespace
}  // namespace quaverly
