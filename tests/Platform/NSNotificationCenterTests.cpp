#include "Platform/Foundation/NSNotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace quaverly {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

NSNotificationCenter& center() {
  return NSNotificationCenter::defaultCenter();
}

class Thing : public NSObject {};

/// Writes what it is told under its name into a common list.
class Listener : public NSObject {
 public:
  Listener(std::string name, std::vector<std::string>& told) : _name(std::move(name)), _told(told) {}

  void hear(const NSNotification& notification) {
    _told.push_back(_name + ":" + std::string(notification.name()));
    if (whenTold) whenTold();
  }
  void listen(std::string_view name, NSObject* object) {
    center().addObserver(this, &Listener::hear, name, object);
  }

  std::function<void()> whenTold;

 private:
  std::string _name;
  std::vector<std::string>& _told;
};

class NSNotificationCenterTest : public testing::Test {
 protected:
  void post(std::string_view name, NSObject* object) { center().postNotificationName(name, object); }

  std::vector<std::string> told;
  Ref<Listener> a = make<Listener>("a", told);
  Ref<Listener> b = make<Listener>("b", told);
  Ref<Thing> one = make<Thing>();
  Ref<Thing> other = make<Thing>();
};

TEST_F(NSNotificationCenterTest, TellsWhoObservesThatNameFromThatObjectOrFromAny) {
  a->listen("N", one.get());
  b->listen("N", nullptr);
  post("N", one.get());
  EXPECT_THAT(told, ElementsAre("a:N", "b:N"));
  told.clear();
  post("N", other.get());
  EXPECT_THAT(told, ElementsAre("b:N"));
  told.clear();
  post("N", nullptr);
  EXPECT_THAT(told, ElementsAre("b:N"));
  told.clear();
  post("M", one.get());
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(NSNotificationCenterTest, TellsInTheOrderOfAdding) {
  b->listen("N", nullptr);
  a->listen("N", one.get());
  b->listen("N", one.get());
  post("N", one.get());
  EXPECT_THAT(told, ElementsAre("b:N", "a:N", "b:N"));
}

TEST_F(NSNotificationCenterTest, BringsObjectAndUserInfo) {
  class Reader : public NSObject {
   public:
    void read(const NSNotification& notification) {
      object = notification.object();
      item = notification.userInfo().at("key");
    }
    NSObject* object = nullptr;
    Ref<NSObject> item;
  };
  const auto reader = make<Reader>();
  center().addObserver(reader.get(), &Reader::read, "N", nullptr);
  center().postNotificationName("N", one.get(), {{"key", other}});
  EXPECT_EQ(reader->object, one.get());
  EXPECT_EQ(reader->item.get(), other.get());
}

TEST_F(NSNotificationCenterTest, RemovingTakesBackWhatWasAddedAndNoMore) {
  a->listen("N", one.get());
  a->listen("N", other.get());
  a->listen("M", one.get());
  b->listen("N", one.get());
  center().removeObserver(a.get(), "N", one.get());
  center().removeObserver(a.get(), "unknown", one.get());
  post("N", one.get());
  post("N", other.get());
  post("M", one.get());
  EXPECT_THAT(told, ElementsAre("b:N", "a:N", "a:M"));
}

TEST_F(NSNotificationCenterTest, RemovingForNoObjectMeansForAny) {
  a->listen("N", one.get());
  a->listen("N", nullptr);
  b->listen("N", one.get());
  center().removeObserver(a.get(), "N", nullptr);
  post("N", one.get());
  EXPECT_THAT(told, ElementsAre("b:N"));
}

TEST_F(NSNotificationCenterTest, AnObserverThatIsGoneIsToldNothing) {
  a->listen("N", one.get());
  b->listen("N", one.get());
  a = nullptr;
  post("N", one.get());
  EXPECT_THAT(told, ElementsAre("b:N"));
}

TEST_F(NSNotificationCenterTest, WhoIsRemovedWhileOthersAreToldIsNotTold) {
  a->listen("N", one.get());
  b->listen("N", one.get());
  a->whenTold = [&] { center().removeObserver(b.get(), "N", one.get()); };
  post("N", one.get());
  EXPECT_THAT(told, ElementsAre("a:N"));
}

TEST_F(NSNotificationCenterTest, WhoGoesWhileOthersAreToldIsNotTold) {
  a->listen("N", one.get());
  b->listen("N", one.get());
  a->whenTold = [&] { b = nullptr; };
  post("N", one.get());
  EXPECT_THAT(told, ElementsAre("a:N"));
}

TEST_F(NSNotificationCenterTest, WhoIsAddedWhileOthersAreToldIsToldNextTime) {
  a->listen("N", one.get());
  a->whenTold = [&] {
    b->listen("N", one.get());
    a->whenTold = nullptr;
  };
  post("N", one.get());
  EXPECT_THAT(told, ElementsAre("a:N"));
  post("N", one.get());
  EXPECT_THAT(told, ElementsAre("a:N", "a:N", "b:N"));
}

TEST_F(NSNotificationCenterTest, ObserverAndObjectLiveThroughTheCall) {
  a->listen("N", one.get());
  size_t references = 0;
  a->whenTold = [&] {
    one = nullptr;
    auto* listener = a.get();
    a = nullptr;
    references = listener->retainCount();
  };
  post("N", one.get());
  EXPECT_EQ(references, 1U);
  EXPECT_THAT(told, ElementsAre("a:N"));
}

TEST_F(NSNotificationCenterTest, TellingOneOfManyCostsAsMuchAsTellingOneOfFew) {
  std::vector<Ref<Thing>> things;
  for (int i = 0; i < 50'000; ++i) {
    things.push_back(make<Thing>());
    a->listen("N", things.back().get());
  }
  for (const auto& thing : things) {
    post("N", thing.get());
    center().removeObserver(a.get(), "N", thing.get());
  }
  EXPECT_EQ(told.size(), things.size());
}

}  // namespace
}  // namespace quaverly
