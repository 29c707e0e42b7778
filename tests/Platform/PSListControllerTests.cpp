#include "Platform/Preferences/PSListController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Foundation/NSClass.h"
#include "Platform/Foundation/NSLog.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SomePane : public PSListController {
 public:
  std::optional<UITargetAction> actionNamed(std::string_view name) override {
    if (name == "follow") return UITargetAction(this, &SomePane::follow);
    return std::nullopt;
  }
  void follow() { ++followed; }
  int followed = 0;
};

const NSClassOf<SomePane> somePaneClass("SomePane", "");

class PropertyListRows : public testing::Test {
 protected:
  PropertyListRows() {
    setLogSink([this](std::string_view line) { _log.emplace_back(line); });
    _pane->setBundle(NSBundle::bundleWithPath(_device.bundlePath));
  }

  std::vector<Ref<PSSpecifier>> rows(const std::string& items) {
    _device.bundle().write("List.plist",
                           "<plist version=\"1.0\"><dict><key>title</key><string>T</string>"
                           "<key>items</key><array>" +
                               items + "</array></dict></plist>");
    return *_pane->loadSpecifiersFromPlistNameTarget("List", _pane.get());
  }

  static std::string row(std::initializer_list<std::pair<std::string, std::string>> entries) {
    std::string text = "<dict>";
    for (const auto& [key, value] : entries) text += "<key>" + key + "</key><string>" + value + "</string>";
    return text + "</dict>";
  }

  test::TestDevice _device;
  Ref<SomePane> _pane = make<SomePane>();
  std::vector<std::string> _log;
};

TEST_F(PropertyListRows, EveryKindHasItsTypeAndKeepsWhatTheListSays) {
  const auto made =
      rows(row({{"cell", "PSGroupCell"}, {"label", "Group"}, {"footerText", "Below"}}) +
           row({{"cell", "PSLinkCell"}, {"label", "Link"}, {"detail", "SomePane"}}) +
           row({{"cell", "PSSwitchCell"}, {"key", "loud"}}) + row({{"cell", "PSTitleValueCell"}}) +
           row({{"cell", "PSEditTextCell"}}) + row({{"cell", "PSButtonCell"}, {"action", "follow"}}));
  std::vector<int> types;
  for (const auto& specifier : made) types.push_back(static_cast<int>(specifier->cellType()));
  EXPECT_THAT(types, ElementsAre(0, 1, 6, 4, 8, 13));
  EXPECT_EQ(made[0]->name(), "Group");
  EXPECT_EQ(made[0]->propertyForKey("footerText").stringValue(), "Below");
  EXPECT_EQ(made[1]->propertyForKey("detail").stringValue(), "SomePane");
  EXPECT_EQ(made[2]->propertyForKey("key").stringValue(), "loud");
  EXPECT_THAT(_log, IsEmpty());
}

TEST_F(PropertyListRows, AButtonCallsTheTarget) {
  const auto made = rows(row({{"cell", "PSButtonCell"}, {"action", "follow"}}));
  ASSERT_TRUE(made.at(0)->buttonAction());
  made[0]->buttonAction()->send();
  EXPECT_EQ(_pane->followed, 1);
}

TEST_F(PropertyListRows, WhatCannotBeShownIsLeftOutAndLogged) {
  const auto made = rows(row({{"cell", "PSGroupCell"}, {"label", "Stays"}}) + row({{"cell", "PSFancyCell"}}) +
                         row({{"label", "no kind"}}) + "<string>no row</string>" +
                         row({{"cell", "PSLinkCell"}, {"label", "L"}, {"detail", "NoSuchPane"}}) +
                         row({{"cell", "PSStaticTextCell"}, {"label", "C"}, {"cellClass", "NoSuchCell"}}) +
                         row({{"cell", "PSButtonCell"}, {"label", "B"}, {"action", "noSuchAction"}}));
  ASSERT_EQ(made.size(), 1u);
  EXPECT_EQ(made[0]->name(), "Stays");
  EXPECT_THAT(
      _log, ElementsAre(HasSubstr("PSFancyCell"), HasSubstr("unknown kind \"\""), HasSubstr("no dictionary"),
                        HasSubstr("NoSuchPane"), HasSubstr("NoSuchCell"), HasSubstr("noSuchAction")));
}

TEST_F(PropertyListRows, LabelsAreInTheFirstOfTheUsersLanguagesThatHasThem) {
  _device->preferredLanguages = {"de", "fr"};
  _device.bundle().write("de.lproj/List.strings", "FOLLOW = Folgen; Localizable = x;");
  _device.bundle().write("fr.lproj/List.strings", "FOLLOW = Suivre; DONATE = Donner;");
  _device.bundle().write("en.lproj/List.strings",
                         "FOLLOW = Follow; DONATE = Donate; BELOW = \"More below\";");
  _device.bundle().write("de.lproj/Localizable.strings", "DONATE = Spenden;");
  std::vector<std::string> names;
  const auto made = rows(row({{"cell", "PSGroupCell"}, {"label", "FOLLOW"}, {"footerText", "BELOW"}}) +
                         row({{"cell", "PSGroupCell"}, {"label", "DONATE"}}) +
                         row({{"cell", "PSGroupCell"}, {"label", "NOWHERE"}}));
  for (const auto& specifier : made) names.push_back(specifier->name());
  EXPECT_THAT(names, ElementsAre("Folgen", "Donner", "NOWHERE"));
  EXPECT_EQ(made[0]->propertyForKey("footerText").stringValue(), "More below");
}

TEST_F(PropertyListRows, WithoutAReadableListThereAreNoRows) {
  EXPECT_THAT(*_pane->loadSpecifiersFromPlistNameTarget("Missing", _pane.get()), IsEmpty());
  _device.bundle().write("Top.plist", "<plist version=\"1.0\"><array/></plist>");
  EXPECT_THAT(*_pane->loadSpecifiersFromPlistNameTarget("Top", _pane.get()), IsEmpty());
  _pane->setBundle(nullptr);
  EXPECT_THAT(*_pane->loadSpecifiersFromPlistNameTarget("Missing", _pane.get()), IsEmpty());
}

}  // namespace
}  // namespace quaverly
