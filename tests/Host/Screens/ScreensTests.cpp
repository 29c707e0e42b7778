#include "Host/Screens/Screens.h"

#include <gmock/gmock.h>

#include "Controllers/ImportAudioController.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UIImageView.h"
#include "Support/NetworkNamespace.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using page::PageMethod;
using screens::Json;

/// A page that keeps what it is told, and puts the changes together as a browser does.
class KeepingPage : public page::PageConnection {
 public:
  void send(std::string text) override {
    const Json message = Json::parse(text);
    messages.push_back(message);
    if (message["type"] == "tree") nodes = message["nodes"];
    if (message["type"] == "change") {
      for (const auto& [number, node] : message["set"].items()) nodes[number] = node;
      for (const auto& gone : message["gone"]) nodes.erase(std::to_string(gone.get<uint64_t>()));
    }
  }
  size_t queuedBytes() const override { return 0; }
  void close() override {}

  /// The number of the first node whose field has that value; 0 for none.
  uint64_t find(const std::string& field, const Json& value) const {
    for (const auto& [number, node] : nodes.items()) {
      if (node.contains(field) && node[field] == value) return std::stoull(number);
    }
    return 0;
  }
  /// The cell that shows the text.
  uint64_t cellWith(const std::string& text) const {
    for (const auto& [number, node] : nodes.items()) {
      if (node["kind"] == "cell" && shows(node, text)) return std::stoull(number);
    }
    return 0;
  }
  Json node(uint64_t number) const { return nodes.at(std::to_string(number)); }

  std::vector<Json> messages;
  Json nodes = Json::object();

 private:
  bool shows(const Json& node, const std::string& text) const {
    if (node.contains("text") && node["text"] == text) return true;
    for (const auto& child : node.value("children", Json::array())) {
      if (shows(nodes.at(std::to_string(child.get<uint64_t>())), text)) return true;
    }
    return false;
  }
};

class ScreensTest : public testing::Test {
 protected:
  void start() {
    test::enterOwnNetwork();
    browser->init();
    screens.emplace(routes, make<UINavigationController>(browser));
    hello(page, "a");
  }
  ~ScreensTest() override {
    screens.reset();
    UIApplication::sharedApplication().screenChanged({375, 667}, UIInterfaceOrientation::Portrait);
  }

  void say(const Json& event) { say(page, event); }
  void say(KeepingPage& from, const Json& event) {
    screens->received(from, event.dump());
    settle();
  }
  void hello(KeepingPage& from, const std::string& client) {
    say(from, {{"type", "hello"}, {"client", client}, {"width", 375}, {"height", 667}, {"orientation", 1}});
  }
  void settle() {
    for (int round = 0; round < 3; ++round) {
      while (NSRunLoop::mainRunLoop().runOnce()) continue;
      device.clock().advance(std::chrono::seconds(1));
    }
    while (NSRunLoop::mainRunLoop().runOnce()) continue;
  }
  void openSong() {
    device.media().write("song.mp3", "no tags");
    start();
    say({{"type", "tap"}, {"node", page.cellWith("song.mp3")}});
    title = page.find("name", "Title");
    ASSERT_NE(title, 0U);
  }
  void edit(KeepingPage& from, const std::string& text, uint64_t sequence) {
    say(from, {{"type", "edit"}, {"node", title}, {"text", text}, {"sequence", sequence}});
  }
  CustomImportViewController& editor() { return *browser->importController(); }
  std::string titleText() { return editor().currentCell()->titleLabel()->text(); }

  /// What a route answers, once it has.
  page::PageAnswer ask(PageMethod method, const std::string& path, const std::string& query = "",
                       const std::string& body = "") {
    std::optional<page::PageAnswer> answer;
    std::mutex mutex;
    page::PageRequest request{method, path, "", query, "", body};
    routes.ask(request, page::PageReply([&](page::PageAnswer given) {
                 const std::lock_guard lock(mutex);
                 answer = std::move(given);
               }));
    for (int turn = 0; turn < 1000; ++turn) {
      NSRunLoop::mainRunLoop().runOnce(std::chrono::milliseconds(10));
      const std::lock_guard lock(mutex);
      if (answer) return *answer;
    }
    ADD_FAILURE() << path << " was not answered";
    return {};
  }

  test::TestDevice device;
  page::PageRoutes routes;
  Ref<ImportAudioController> browser = make<ImportAudioController>();
  std::optional<screens::Screens> screens;
  KeepingPage page;
  uint64_t title = 0;
};

TEST_F(ScreensTest, APageGetsTheWholeTreeWhenItSaysHello) {
  device.media().write("song.mp3", "x");
  start();
  const auto& tree = page.messages.front();
  EXPECT_EQ(tree["type"], "tree");
  EXPECT_EQ(tree["screen"], Json({375.0, 667.0}));
  EXPECT_EQ(tree["orientation"], 1);
  EXPECT_TRUE(tree["now"].is_number());
  EXPECT_TRUE(page.nodes.contains(std::to_string(tree["root"].get<uint64_t>())));
  EXPECT_NE(page.find("text", "Quaverly"), 0U);
  EXPECT_NE(page.find("text", "/var/mobile/Media"), 0U);
  const auto row = page.node(page.cellWith("song.mp3"));
  EXPECT_EQ(row["row"], 1);
  EXPECT_EQ(row["rows"], 1);
  EXPECT_EQ(row["selectable"], true);
  EXPECT_EQ(row["separator"], Json({15.0, "rgb(200 199 204)"}));
}

TEST_F(ScreensTest, EveryChildThatIsNamedIsTold) {
  device.media().write("song.mp3", "x");
  start();
  for (const auto& [number, node] : page.nodes.items()) {
    for (const auto& child : node.value("children", Json::array()))
      EXPECT_TRUE(page.nodes.contains(std::to_string(child.get<uint64_t>()))) << number;
  }
}

TEST_F(ScreensTest, ATapChangesWhatIsSeenAndTellsEveryPage) {
  device.media().write("folder/inner.mp3", "x");
  start();
  KeepingPage other;
  hello(other, "b");
  const auto row = page.cellWith("folder");
  say({{"type", "tap"}, {"node", row}});
  EXPECT_EQ(browser->openedFolder()->string(), "/var/mobile/Media/folder");
  EXPECT_NE(page.cellWith("inner.mp3"), 0U);
  EXPECT_FALSE(page.nodes.contains(std::to_string(row)));
  EXPECT_EQ(page.nodes, other.nodes);
}

TEST_F(ScreensTest, WhatDidNotChangeIsNotToldAgain) {
  start();
  const auto told = page.messages.size();
  say({{"type", "tap"}, {"node", 1}});
  EXPECT_EQ(page.messages.size(), told);
}

TEST_F(ScreensTest, APageThatConnectsLaterSeesThePresentState) {
  openSong();
  edit(page, "typed", 1);
  KeepingPage other;
  hello(other, "b");
  EXPECT_EQ(other.nodes, page.nodes);
  EXPECT_EQ(other.node(title)["text"], "typed");
}

TEST_F(ScreensTest, APageThatIsGoneIsToldNothingMore) {
  start();
  screens->disconnected(page);
  const auto told = page.messages.size();
  browser->backBrowser();
  settle();
  EXPECT_EQ(page.messages.size(), told);
}

TEST_F(ScreensTest, WithoutAPageTheDeviceGoesOnAndTheNextOneSeesWhereItIs) {
  start();
  screens->disconnected(page);
  device.media().write("new.mp3", "x");
  browser->setItems(browser->ItemsInFolder("/var/mobile/Media"));
  settle();
  EXPECT_TRUE(browser->tableView()->cellForRowAtIndexPath({0, 0}));
  KeepingPage other;
  hello(other, "b");
  EXPECT_EQ(other.messages.front()["type"], "tree");
  EXPECT_NE(other.cellWith("new.mp3"), 0U);
}

TEST_F(ScreensTest, WithoutAPageNothingIsDescribedAndNoPictureIsKeptToBeFetched) {
  start();
  screens->disconnected(page);
  auto image = UIImage::imageWithCGImage(make<CGImage>(1, 1, std::make_unique<uint8_t[]>(4)));
  const auto isAlive = image->liveness();
  const auto view = make<UIImageView>(CGRect{0, 0, 10, 10});
  view->setImage(std::exchange(image, nullptr));
  UIApplication::sharedApplication().keyWindow()->addSubview(view);
  settle();
  view->setImage(nullptr);
  EXPECT_FALSE(*isAlive);
}

TEST_F(ScreensTest, AnEditIsTakenAndAcknowledgedAfterItsEffect) {
  openSong();
  page.messages.clear();
  edit(page, "Lantern", 1);
  EXPECT_EQ(titleText(), "Lantern");
  ASSERT_EQ(page.messages.size(), 2U);
  EXPECT_EQ(page.messages[0]["set"][std::to_string(title)]["text"], "Lantern");
  EXPECT_EQ(page.messages[1], Json({{"type", "ack"}, {"node", title}, {"sequence", 1}}));
}

TEST_F(ScreensTest, AnOlderEditIsAcknowledgedAndChangesNothing) {
  openSong();
  edit(page, "newer", 5);
  edit(page, "older", 4);
  edit(page, "same", 5);
  EXPECT_EQ(titleText(), "newer");
  EXPECT_EQ(page.messages.back()["sequence"], 5);
}

TEST_F(ScreensTest, TheSameClientGoesOnCountingOverANewConnection) {
  openSong();
  edit(page, "first", 3);
  screens->disconnected(page);
  KeepingPage again;
  hello(again, "a");
  edit(again, "first again", 3);
  EXPECT_EQ(titleText(), "first");
  edit(again, "second", 4);
  EXPECT_EQ(titleText(), "second");
}

TEST_F(ScreensTest, AnotherClientCountsForItself) {
  openSong();
  edit(page, "mine", 10);
  KeepingPage other;
  hello(other, "b");
  edit(other, "yours", 1);
  EXPECT_EQ(titleText(), "yours");
}

TEST_F(ScreensTest, WhatIsCoveredCannotBeTouched) {
  device.media().makeFolder("folder");
  openSong();
  const auto folder = page.cellWith("folder");
  ASSERT_NE(folder, 0U);
  say({{"type", "tap"}, {"node", folder}});
  EXPECT_EQ(browser->openedFolder()->string(), "/var/mobile/Media");
}

TEST_F(ScreensTest, AScrollFromBeforeTheHostMovedIsIgnored) {
  for (int i = 0; i < 100; ++i) device.media().write("f" + std::to_string(i), "x");
  start();
  const auto table = page.find("kind", "table");
  const uint64_t moved = page.node(table)["moved"];
  say({{"type", "scroll"}, {"node", table}, {"x", 0}, {"y", 500}, {"moved", moved}});
  EXPECT_EQ(browser->tableView()->contentOffset().y, 500);
  EXPECT_EQ(page.node(table)["moved"], moved);
  browser->tableView()->setContentOffset({0, 100});
  say({{"type", "scroll"}, {"node", table}, {"x", 0}, {"y", 900}, {"moved", moved}});
  EXPECT_EQ(browser->tableView()->contentOffset().y, 100);
  EXPECT_EQ(page.node(table)["moved"], moved + 1);
}

TEST_F(ScreensTest, TurningThePageTurnsTheDevice) {
  start();
  say({{"type", "screen"}, {"width", 667}, {"height", 375}, {"orientation", 3}});
  EXPECT_EQ(UIApplication::sharedApplication().statusBarOrientation(),
            UIInterfaceOrientation::LandscapeRight);
  EXPECT_EQ(page.messages.back()["screen"], Json({667.0, 375.0}));
  for (const Json& refused : {Json{{"width", 1e9}, {"height", 375}}, Json{{"width", 0}, {"height", 0}},
                              Json{{"width", "x"}, {"height", 375}}, Json{{"width", -5}, {"height", 375}}}) {
    Json event = refused;
    event["type"] = "screen";
    event["orientation"] = 1;
    say(event);
  }
  say({{"type", "screen"}, {"width", 375}, {"height", 667}, {"orientation", 9}});
  EXPECT_EQ(UIApplication::sharedApplication().keyWindow()->bounds(), (CGRect{0, 0, 667, 375}));
}

TEST_F(ScreensTest, RubbishChangesNothing) {
  openSong();
  const auto before = page.nodes;
  for (const std::string& text :
       {std::string("{"), std::string("[]"), std::string("3"), std::string("null"), std::string(60'000, '['),
        std::string(R"({"type":7})"), std::string(R"({"type":"tap"})"),
        std::string(R"({"type":"tap","node":-1})"),
        std::string(R"({"type":"tap","node":18446744073709551615})"),
        std::string(R"({"type":"tap","node":[1]})"),
        std::string(R"({"type":"scroll","node":1,"x":1e308,"y":1e308,"moved":9})"),
        std::string(R"({"type":"edit","node":"a","text":1,"sequence":{}})"),
        std::string(R"({"type":"edit","node":99999,"text":"x","sequence":1})"),
        std::string(R"({"type":"cancel","node":1})"), std::string(R"({"type":"screen"})"),
        std::string(R"({"type":"unheard of"})")}) {
    screens->received(page, text);
    settle();
  }
  EXPECT_EQ(page.nodes, before);
}

TEST_F(ScreensTest, WhoHasNotSaidHelloIsIgnored) {
  device.media().makeFolder("folder");
  start();
  KeepingPage stranger;
  say(stranger, {{"type", "tap"}, {"node", page.cellWith("folder")}});
  EXPECT_EQ(browser->openedFolder()->string(), "/var/mobile/Media");
  EXPECT_TRUE(stranger.messages.empty());
}

TEST_F(ScreensTest, AnAnimationIsToldFromItsBeginning) {
  device.media().write("song.mp3", "no tags");
  start();
  screens->received(page, Json{{"type", "tap"}, {"node", page.cellWith("song.mp3")}}.dump());
  while (NSRunLoop::mainRunLoop().runOnce()) continue;
  Json sliding;
  for (const auto& [number, node] : page.nodes.items()) {
    if (node.contains("animations")) sliding = node["animations"][0];
  }
  ASSERT_TRUE(sliding.is_object());
  EXPECT_EQ(sliding["property"], "center");
  EXPECT_EQ(sliding["from"], Json({187.5, 667 * 1.5}));
  EXPECT_EQ(sliding["to"], Json({187.5, 333.5}));
  EXPECT_EQ(sliding["easing"], "ease-out");
  EXPECT_EQ(sliding["repeat"], false);
  settle();
  for (const auto& [number, node] : page.nodes.items()) EXPECT_FALSE(node.contains("animations")) << number;
}

TEST_F(ScreensTest, AMessageIsAStatus) {
  start();
  const auto label = page.node(page.find("text", "NO_FILES"));
  EXPECT_EQ(label["role"], "status");
}

std::string png(uint8_t level) {
  auto pixels = std::make_unique<uint8_t[]>(64);
  for (size_t i = 0; i < 64; ++i) pixels[i] = i % 4 == 3 ? 255 : level;
  return std::string(
      UIImage::imageWithCGImage(make<CGImage>(4, 4, std::move(pixels)))->encodedForDisplay()->data.text());
}

TEST_F(ScreensTest, PicturesAreFetchedByTheirPath) {
  const std::string icon = png(200);
  device.bundle().write("images/folder_icon.png", icon);
  device.media().makeFolder("folder");
  start();
  const auto image = page.find("imageSize", Json({4.0, 4.0}));
  ASSERT_NE(image, 0U);
  const std::string path = page.node(image)["image"];
  const auto answer = ask(PageMethod::get, path);
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.contentType, "image/png");
  EXPECT_EQ(answer.body.text(), icon);
  EXPECT_EQ(ask(PageMethod::get, "/image/999").status, 404);
  EXPECT_EQ(ask(PageMethod::get, "/image/../x").status, 404);
}

TEST_F(ScreensTest, FontsAreTheFilesThatTextIsMeasuredWith) {
  start();
  const auto answer = ask(PageMethod::get, "/fonts/Arial");
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.contentType, "font/ttf");
  EXPECT_EQ(answer.body.text(), test::contentsOf(*UIFont::fileForName("Arial")));
  EXPECT_EQ(ask(PageMethod::get, "/fonts/HelveticaNeue").contentType, "font/otf");
  EXPECT_EQ(ask(PageMethod::get, "/fonts/../Arial").status, 404);
}

class PickingTest : public ScreensTest {
 protected:
  void SetUp() override {
    openSong();
    say({{"type", "tap"}, {"node", page.find("name", "Choose cover")}});
    picker = page.find("kind", "picker");
    ASSERT_NE(picker, 0U);
  }
  std::string query() const { return "node=" + std::to_string(picker); }

  uint64_t picker = 0;
};

TEST_F(PickingTest, APictureThatIsPickedBecomesTheCover) {
  EXPECT_EQ(page.node(picker)["editing"], true);
  EXPECT_EQ(ask(PageMethod::post, "/picked", query(), png(100)).status, 204);
  settle();
  EXPECT_EQ(page.find("kind", "picker"), 0U);
  EXPECT_TRUE(editor().currentSongItem().artworkMedium());
  EXPECT_THAT(test::contentsOf(device.temporary() / "tmp/current_album_image.png"),
              testing::StartsWith("\xff\xd8"));
}

TEST_F(PickingTest, WhatIsNoPictureIsSaidAndChangesNothing) {
  for (const std::string& file : {std::string("no picture"), png(100).substr(0, 60), std::string()}) {
    const auto answer = ask(PageMethod::post, "/picked", query(), file);
    EXPECT_EQ(answer.status, 415);
    EXPECT_THAT(std::string(answer.body.text()), testing::HasSubstr("no picture that can be used"));
  }
  settle();
  EXPECT_NE(page.find("kind", "picker"), 0U);
  EXPECT_FALSE(editor().currentSongItem().artworkMedium());
}

TEST_F(PickingTest, NobodyElseWaitsForAPicture) {
  for (const std::string wrong : {"node=1", "node=x", "", "node=", "node=99999999999999999999"})
    EXPECT_EQ(ask(PageMethod::post, "/picked", wrong, png(100)).status, 409) << wrong;
}

TEST_F(PickingTest, WhatIsReadOutAndWhatWentWrongIsInTheUsersLanguage) {
  Device::current().systemWords = [](std::string_view english) { return "<" + std::string(english) + ">"; };
  const auto answer = ask(PageMethod::post, "/picked", query(), "no picture");
  EXPECT_THAT(std::string(answer.body.text()), testing::MatchesRegex("<This is no picture .*>"));
  const auto named = make<UIView>();
  named->setAccessibilityLabel("Year");
  Json node;
  screens::describeLooks(*named, node);
  EXPECT_EQ(node["name"], "<Year>");
}

TEST_F(PickingTest, CancellingTakesThePickerAway) {
  say({{"type", "cancel"}, {"node", picker}});
  EXPECT_EQ(page.find("kind", "picker"), 0U);
  EXPECT_FALSE(editor().currentSongItem().artworkMedium());
  EXPECT_EQ(ask(PageMethod::post, "/picked", query(), png(100)).status, 409);
}

}  // namespace
}  // namespace quaverly
