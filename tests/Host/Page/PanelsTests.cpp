#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "Host/Library/ServiceUnderTest.h"
#include "Host/Page/Panels.h"

namespace quaverly::page {
namespace {

using library::ServiceUnderTest;
using Json = nlohmann::json;

/// A page that keeps what it is sent.
class KeepingPage : public PageConnection {
 public:
  void send(std::string text) override { messages.push_back(Json::parse(text)); }
  size_t queuedBytes() const override { return 0; }
  void close() override {}

  std::vector<Json> messages;
};

class PanelsTest : public testing::Test {
 protected:
  void add(unsigned seed) {
    const std::string name = std::to_string(seed) + ".mp3";
    under.device().media().write(name, library::songBytes(seed));
    library::SongTags tags;
    tags.title = "Song " + std::to_string(seed);
    under.add({"/var/mobile/Media/" + name, tags});
  }

  ServiceUnderTest under;
  Panels panels{under.service(), under.settings().libraryFolder};
  KeepingPage page;
};

TEST_F(PanelsTest, GatherWhatChangesIntoFewMessages) {
  panels.connected(page);
  ASSERT_EQ(page.messages.size(), 2U);
  for (unsigned i = 1; i <= 20; ++i) add(i);
  under.runUntilEnded(20);
  EXPECT_EQ(page.messages.size(), 2U);
  under.device().clock().advance(Panels::gathering);
  ASSERT_EQ(page.messages.size(), 4U);
  EXPECT_EQ(page.messages[2]["type"], "downloads");
  EXPECT_EQ(page.messages[2]["items"].size(), 20U);
  EXPECT_EQ(page.messages[2]["items"][0]["state"], "filed");
  EXPECT_EQ(page.messages[3]["type"], "library");
  EXPECT_EQ(page.messages[3]["items"].size(), 20U);
  EXPECT_FALSE(page.messages[3].contains("more"));
  under.device().clock().advance(10 * Panels::gathering);
  EXPECT_EQ(page.messages.size(), 4U);
}

TEST_F(PanelsTest, TellAPageThatComesLaterTheSame) {
  add(1);
  under.runUntilEnded(1);
  under.device().clock().advance(Panels::gathering);
  panels.connected(page);
  ASSERT_EQ(page.messages.size(), 2U);
  EXPECT_EQ(page.messages[0]["items"][0]["title"], "Song 1");
  EXPECT_EQ(page.messages[1]["items"][0]["path"], "Unknown Artist/Unknown Album/Song 1.mp3");
  EXPECT_EQ(page.messages[1]["items"][0]["hasCover"], false);
}

TEST_F(PanelsTest, TellNobodyWhoHasGone) {
  panels.connected(page);
  panels.disconnected(page);
  add(1);
  under.runUntilEnded(1);
  under.device().clock().advance(Panels::gathering);
  EXPECT_EQ(page.messages.size(), 2U);
}

TEST_F(PanelsTest, TellWhyNothingGoesOn) {
  panels.connected(page);
  panels.serviceWaits("Another import is running.");
  EXPECT_EQ(page.messages.back()["notice"], "Another import is running.");
  KeepingPage later;
  panels.connected(later);
  EXPECT_EQ(later.messages[0]["notice"], "Another import is running.");
  add(1);
  under.runUntilEnded(1);
  under.device().clock().advance(Panels::gathering);
  EXPECT_EQ(page.messages.back()["type"], "library");
  EXPECT_EQ(page.messages[page.messages.size() - 2]["notice"], "");
}

TEST_F(PanelsTest, PassOverWhatIsMeantForTheScreens) {
  panels.connected(page);
  for (const auto* text : {"", "{}", "rubbish \"retry\"", "{\"type\":\"tap\",\"text\":\"retry\"}",
                           "{\"type\":\"edit\",\"field\":\"retry\"}", "[\"retry\"]"}) {
    panels.received(page, text);
  }
  EXPECT_EQ(page.messages.size(), 2U);
}

}  // namespace
}  // namespace quaverly::page
