#include "Platform/Preferences/PSListController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "Platform/Foundation/NSClass.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/Preferences/PSStoredValues.h"
#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UINavigationController.h"
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

TEST_F(PropertyListRows, TheListsTitleIsThePanesUnlessItHasOne) {
  rows("");
  EXPECT_EQ(_pane->title(), "T");
  _pane->setTitle("Own");
  rows("");
  EXPECT_EQ(_pane->title(), "Own");
}

TEST_F(PropertyListRows, WithoutAReadableListThereAreNoRows) {
  EXPECT_THAT(*_pane->loadSpecifiersFromPlistNameTarget("Missing", _pane.get()), IsEmpty());
  _device.bundle().write("Top.plist", "<plist version=\"1.0\"><array/></plist>");
  EXPECT_THAT(*_pane->loadSpecifiersFromPlistNameTarget("Top", _pane.get()), IsEmpty());
  _pane->setBundle(nullptr);
  EXPECT_THAT(*_pane->loadSpecifiersFromPlistNameTarget("Missing", _pane.get()), IsEmpty());
}

TEST_F(PropertyListRows, TheLogSaysWhyAListHasNoRows) {
  rows("</array><key>more</key><array>");
  EXPECT_THAT(_log, IsEmpty());
  _device.bundle().write("Top.plist", "<plist version=\"1.0\"><array/></plist>");
  _device.bundle().write("Damaged.plist", "<plist version=\"1.0\"><dict>");
  _device.bundle().makeFolder("Folder.plist");
  for (const char* name : {"Missing", "Top", "Damaged", "Folder"}) {
    _log.clear();
    EXPECT_THAT(*_pane->loadSpecifiersFromPlistNameTarget(name, _pane.get()), IsEmpty());
    EXPECT_THAT(_log, ElementsAre(HasSubstr(name)));
  }
}

/// Rows whose values are kept, in a pane that is made anew each time.
class StoredRows : public PropertyListRows {
 protected:
  StoredRows() {
    _device->mounts.mount(PSStoredValues::folder, _values.path(), MountTable::Access::readWrite);
  }

  Ref<PSTableCell> cell(const char* kind, const std::string& key, const std::string& more = "") {
    const auto made = rows("<dict><key>cell</key><string>" + std::string(kind) +
                           "</string><key>label</key><string>Row</string><key>key</key><string>" + key +
                           "</string><key>defaults</key><string>com.some.rows</string>" + more + "</dict>");
    auto cell = make<PSTableCell>();
    cell->initWithSpecifier(made.at(0));
    return cell;
  }

  std::string file() const { return test::contentsOf(_values / "com.some.rows.json"); }

  test::TemporaryFolder _values;
};

TEST_F(StoredRows, ASwitchBeginsAsTheListSaysAndStaysAsAPersonLeftIt) {
  const std::string on = "<key>default</key><true/>";
  EXPECT_FALSE(cell("PSSwitchCell", "loud")->control()->isOn());
  const auto first = cell("PSSwitchCell", "loud", on);
  EXPECT_TRUE(first->control()->isOn());
  first->control()->toggle();
  EXPECT_FALSE(cell("PSSwitchCell", "loud", on)->control()->isOn());
  EXPECT_TRUE(cell("PSSwitchCell", "bright", on)->control()->isOn());
  EXPECT_EQ(file(), "{\n  \"loud\": false\n}\n");
}

TEST_F(StoredRows, ATextRowIsEditedInItsRow) {
  const auto first = cell("PSEditTextCell", "name", "<key>placeholder</key><string>Nobody</string>");
  ASSERT_TRUE(first->textField());
  EXPECT_EQ(first->textField()->text(), "");
  EXPECT_EQ(first->textField()->placeholder(), "Nobody");
  EXPECT_EQ(first->textField()->accessibilityLabel(), "Row");
  first->textField()->type("Ann \"A\" Übel");
  _device.clock().advance(std::chrono::seconds(1));
  EXPECT_EQ(cell("PSEditTextCell", "name")->textField()->text(), "Ann \"A\" Übel");
  EXPECT_EQ(cell("PSTitleValueCell", "name")->detailTextLabel()->text(), "Ann \"A\" Übel");
}

TEST_F(StoredRows, WhatIsTypedIsKeptTwiceASecondAndNotForEveryKey) {
  const auto row = cell("PSEditTextCell", "name");
  const auto type = [&](const char* text) {
    row->textField()->type(text);
    _device.clock().advance(std::chrono::milliseconds(200));
  };
  type("A");
  type("An");
  EXPECT_FALSE(std::filesystem::exists(_values / "com.some.rows.json"));
  type("Ann");
  EXPECT_EQ(file(), "{\n  \"name\": \"Ann\"\n}\n");
  type("Anne");
  _device.clock().advance(std::chrono::milliseconds(300));
  EXPECT_EQ(file(), "{\n  \"name\": \"Anne\"\n}\n");
}

TEST_F(StoredRows, WhatWasTypedLastIsKeptWhenTheRowGoes) {
  auto row = cell("PSEditTextCell", "name");
  row->textField()->type("Ann");
  row = nullptr;
  EXPECT_EQ(file(), "{\n  \"name\": \"Ann\"\n}\n");
}

TEST_F(StoredRows, ARowSaysTheTitleOfItsValue) {
  _device.bundle().write("en.lproj/List.strings", "LOW = Quiet;");
  const std::string choices =
      "<key>validValues</key><array><integer>1</integer><integer>5</integer><integer>9</integer></array>"
      "<key>validTitles</key><array><string>LOW</string><string>Loud</string></array>";
  for (const char* kind : {"PSLinkListCell", "PSSegmentCell", "PSSliderCell", "PSTitleValueCell"}) {
    const auto shown = [&](const char* value) {
      _values.write("com.some.rows.json", std::string("{\"volume\": ") + value + "}");
      return cell(kind, "volume", choices)->detailTextLabel()->text();
    };
    EXPECT_EQ(shown("1"), "Quiet") << kind;
    EXPECT_EQ(shown("5"), "Loud") << kind;
    EXPECT_EQ(shown("9"), "9") << kind;
    EXPECT_EQ(shown("0.5"), "0.5") << kind;
    EXPECT_EQ(cell(kind, "unknown", "<key>default</key><real>0.25</real>")->detailTextLabel()->text(), "0.25")
        << kind;
    EXPECT_EQ(cell(kind, "unknown")->detailTextLabel()->text(), "") << kind;
  }
}

TEST_F(StoredRows, AFieldLiesBehindItsLabel) {
  const auto row = cell("PSEditTextCell", "name", "<key>keyboard</key><string>numbers</string>");
  EXPECT_EQ(row->textField()->keyboardType(), UIKeyboardType::NumberPad);
  row->setFrame({0, 0, 375, 44});
  row->layoutIfNeeded();
  const auto label = row->textLabel()->frame();
  const auto field = row->textField()->frame();
  EXPECT_EQ(label.x, 15);
  EXPECT_GT(label.width, 20);
  EXPECT_GT(field.x, label.maxX());
  EXPECT_EQ(field.maxX(), 360);
  EXPECT_EQ(field.height, 44);
}

TEST_F(StoredRows, OneRowsValueLeavesTheOthersAsTheyAre) {
  _values.write("com.some.rows.json", R"({"size": 1e400, "loud": true, "list": [1.50]})");
  cell("PSSwitchCell", "loud")->control()->toggle();
  EXPECT_EQ(file(), "{\n  \"size\": 1e400,\n  \"loud\": false,\n  \"list\": [\n    1.50\n  ]\n}\n");
}

TEST_F(StoredRows, ADamagedFileHoldsNoValuesAndIsReplaced) {
  _values.write("com.some.rows.json", "{\"loud\": tr");
  const auto row = cell("PSSwitchCell", "loud");
  EXPECT_FALSE(row->control()->isOn());
  row->control()->toggle();
  EXPECT_EQ(file(), "{\n  \"loud\": true\n}\n");
}

TEST_F(StoredRows, NoNameLeadsOutOfTheFolder) {
  _values.makeFolder("inner");
  _device->mounts.mount(PSStoredValues::folder, _values / "inner", MountTable::Access::readWrite);
  for (const char* name : {"", "../up", "/tmp/x", ".", "..", ".hidden"}) {
    PSStoredValues::setValueForKey(true, "loud", name);
    EXPECT_TRUE(PSStoredValues::valueForKey("loud", name).isNull()) << name;
  }
  EXPECT_FALSE(std::filesystem::exists(_values / "up.json"));
}

TEST_F(StoredRows, WhereNothingCanBeKeptTheLogSaysSo) {
  _device->mounts.unmount(PSStoredValues::folder);
  _log.clear();
  const auto row = cell("PSSwitchCell", "loud");
  row->control()->toggle();
  EXPECT_TRUE(row->control()->isOn());
  EXPECT_THAT(_log, ElementsAre(HasSubstr("com.some.rows.json")));
}

class TallCell : public PSTableCell {
 public:
  std::optional<double> preferredHeightForWidth(double width) override { return width / 3; }
};

const NSClassOf<TallCell> tallCellClass("TallCell", "");

/// A pane in a window, with one row of each kind.
class ShownPane : public PropertyListRows {
 protected:
  class Pane : public SomePane {
   public:
    explicit Pane(std::vector<Ref<PSSpecifier>> rows) {
      _specifiers = std::make_shared<const std::vector<Ref<PSSpecifier>>>(std::move(rows));
    }
    NSPlainValue value(PSSpecifier&) { return NSPlainValue("a value"); }
    NSPlainValue isOn(PSSpecifier&) { return true; }
    void turn(const NSPlainValue& value, PSSpecifier&) { turned.push_back(value.boolValue()); }
    std::vector<bool> turned;
  };

  ShownPane() {
    auto made = rows(row({{"cell", "PSGroupCell"}, {"label", "First"}, {"footerText", "Below"}}) +
                     row({{"cell", "PSLinkCell"}, {"label", "Link"}, {"detail", "SomePane"}}) +
                     row({{"cell", "PSButtonCell"}, {"label", "Follow"}, {"action", "follow"}}) +
                     row({{"cell", "PSGroupCell"}}) +
                     row({{"cell", "PSStaticTextCell"}, {"label", "Tall"}, {"cellClass", "TallCell"}}) +
                     row({{"cell", "PSStaticTextCell"}, {"label", "No cell"}, {"cellClass", "SomePane"}}));
    _shown = make<Pane>(std::move(made));
    _shown->setBundle(_pane->bundle());
    const auto add = [this](Ref<PSSpecifier> specifier) {
      auto all = *_shown->specifiers();
      all.push_back(std::move(specifier));
      _shown = make<Pane>(std::move(all));
    };
    add(PSSpecifier::preferenceSpecifierNamedTargetSetGetCell("Value", _owner.get(), nullptr, &Pane::value,
                                                              PSCellType::titleValue));
    add(PSSpecifier::preferenceSpecifierNamedTargetSetGetCell("Switch", _owner.get(), &Pane::turn,
                                                              &Pane::isOn, PSCellType::switchCell));
    const auto window = make<UIWindow>(CGRect{0, 0, 375, 667});
    window->setRootViewController(make<UINavigationController>(_shown));
    window->makeKeyAndVisible();
    UIApplication::sharedApplication().layoutIfNeeded();
    _table = Ref<UITableView>(dynamic_cast<UITableView*>(_shown->view().get()));
  }
  ~ShownPane() override { UIApplication::sharedApplication().setKeyWindow(nullptr); }

  Ref<PSTableCell> cell(size_t section, size_t row) {
    const auto found = _table->cellForRowAtIndexPath({section, row});
    return Ref<PSTableCell>(dynamic_cast<PSTableCell*>(found.get()));
  }

  Ref<Pane> _owner = make<Pane>(std::vector<Ref<PSSpecifier>>());
  Ref<Pane> _shown;
  Ref<UITableView> _table;
};

TEST_F(ShownPane, ShowsGroupsAndTheirRows) {
  ASSERT_EQ(_table->numberOfSections(), 2u);
  EXPECT_EQ(_table->numberOfRowsInSection(0), 2u);
  EXPECT_EQ(_table->numberOfRowsInSection(1), 3u);  // without the one whose class makes no cells
  EXPECT_EQ(_shown->tableViewTitleForHeaderInSection(*_table, 0), "First");
  EXPECT_EQ(_shown->tableViewTitleForFooterInSection(*_table, 0), "Below");
  EXPECT_EQ(_shown->tableViewTitleForHeaderInSection(*_table, 1), std::nullopt);
  EXPECT_EQ(cell(0, 0)->textLabel()->text(), "Link");
  EXPECT_EQ(cell(0, 0)->accessoryType(), UITableViewCellAccessoryType::DisclosureIndicator);
  EXPECT_DOUBLE_EQ(cell(1, 0)->frame().height, 125);
  EXPECT_EQ(cell(1, 1)->detailTextLabel()->text(), "a value");
  EXPECT_DOUBLE_EQ(cell(0, 1)->frame().height, 44);
}

TEST_F(ShownPane, ASwitchSetsTheNewValueAndStaysWhereAPersonPutIt) {
  ASSERT_TRUE(cell(1, 2)->control());
  EXPECT_TRUE(cell(1, 2)->control()->isOn());
  cell(1, 2)->control()->toggle();
  EXPECT_THAT(_owner->turned, ElementsAre(false));
  _table->reloadData();
  UIApplication::sharedApplication().layoutIfNeeded();
  EXPECT_FALSE(cell(1, 2)->control()->isOn());
}

TEST_F(ShownPane, ARowHasTheBundlesIconInItsLargestForm) {
  const std::string icons = QUAVERLY_SOURCE_DIR "/resources/QuaverlySettings.bundle/images/";
  _device.bundle().write("images/some@2x.png", test::contentsOf(icons + "engines_icon@2x.png"));
  const auto pane = make<Pane>(rows(row({{"cell", "PSStaticTextCell"}, {"icon", "some"}}) +
                                    row({{"cell", "PSStaticTextCell"}, {"icon", "none"}})));
  pane->setBundle(_pane->bundle());
  const auto iconOf = [&](size_t row) {
    return pane->tableViewCellForRowAtIndexPath(*_table, {0, row})->imageView()->image();
  };
  ASSERT_TRUE(iconOf(0));
  EXPECT_EQ(iconOf(0)->scale(), 2);
  EXPECT_FALSE(iconOf(1));
}

TEST_F(ShownPane, ATapFollowsALinkOrPressesAButton) {
  _table->tapRow({0, 1});
  EXPECT_EQ(_pane->followed, 1);
  EXPECT_EQ(_table->indexPathForSelectedRow(), std::nullopt);
  _table->tapRow({0, 0});
  const auto* top = _shown->navigationController()->topViewController();
  EXPECT_TRUE(dynamic_cast<const SomePane*>(top) && top != _shown.get());
  EXPECT_EQ(top->title(), "Link");
}

}  // namespace
}  // namespace quaverly
