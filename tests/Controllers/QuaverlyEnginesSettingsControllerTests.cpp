#include "Controllers/QuaverlyEnginesSettingsController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Other/LocalizedStrings.h"
#include "Platform/AppSupport/CPDistributedMessagingCenter.h"
#include "Platform/Foundation/NSClass.h"
#include "Platform/Foundation/NSFileManager.h"
#include "Platform/Foundation/NSLog.h"
#include "Support/PrivateBus.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class EnginesPane : public testing::Test {
 protected:
  EnginesPane() {
    _device.bundle().write("en.lproj/Localizable.strings",
                           "ENGINE = Kind; VERSION = Edition; DEVELOPER = Maker; ENABLED = On;");
    _device->mounts.mount(std::string(_device.bundlePath) + "/engines", _engines.path(),
                          MountTable::Access::readWrite);
  }

  Ref<QuaverlyEnginesSettingsController> pane() const { return make<QuaverlyEnginesSettingsController>(); }

  /// The switch of the only engine.
  static Ref<PSSpecifier> switchOf(QuaverlyEnginesSettingsController& pane) {
    return pane.specifiers()->at(4);
  }

  void turn(bool on) const {
    const auto opened = pane();
    switchOf(*opened)->performSetterWithValue(on);
    CPDistributedMessagingCenter::finishSending();
  }

  std::string contents(const char* name) const { return test::contentsOf(_engines / name); }

  test::TestDevice _device;
  test::TemporaryFolder _engines;
};

const std::string engine =
    R"({"title": "One", "engine": "direct", "version": 1.10, "developer": "Somebody", "enabled": true})";

TEST_F(EnginesPane, ShowsAGroupAndFourRowsForEachEngine) {
  _engines.write("one.qvsc", engine);
  const auto opened = pane();
  const auto rows = *opened->specifiers();
  ASSERT_THAT(rows, SizeIs(5));
  std::vector<std::string> names;
  std::vector<PSCellType> types;
  std::vector<std::string> values;
  for (const auto& row : rows) {
    names.push_back(row->name());
    types.push_back(row->cellType());
    values.push_back(row->performGetter().stringValue());
  }
  using enum PSCellType;
  EXPECT_THAT(names, ElementsAre("One", "Kind", "Edition", "Maker", "On"));
  EXPECT_THAT(types, ElementsAre(group, titleValue, titleValue, titleValue, switchCell));
  EXPECT_THAT(values, ElementsAre("", "direct", "1.10", "Somebody", "1"));
  EXPECT_EQ(rows[4]->propertyForKey("engine_path").stringValue(),
            std::string(_device.bundlePath) + "/engines/one.qvsc");
  EXPECT_TRUE(rows[4]->hasSetter());
  for (size_t at = 0; at < 4; ++at) {
    EXPECT_FALSE(rows[at]->hasSetter());
    EXPECT_TRUE(rows[at]->propertyForKey("engine_path").isNull());
  }
}

TEST_F(EnginesPane, EnginesStandInTheOrderOfTheListingAndOtherFilesAreIgnored) {
  for (const char* name : {"b.qvsc", "a.qvsc", "z.qvsc", "m.qvsc"})
    _engines.write(name, std::string(R"({"title": ")") + name + "\"}");
  _engines.write("notes.txt", engine);
  _engines.write("x.QVSC", engine);
  _engines.write("y.qvsc.bak", engine);
  std::vector<std::string> listed;
  const auto names =
      NSFileManager::defaultManager().contentsOfDirectoryAtPath(std::string(_device.bundlePath) + "/engines");
  for (const std::string_view name : *names)
    if (name.ends_with(".qvsc")) listed.emplace_back(name);
  ASSERT_THAT(listed, SizeIs(4));
  std::vector<std::string> groups;
  const auto opened = pane();
  for (const auto& row : *opened->specifiers())
    if (row->cellType() == PSCellType::group) groups.push_back(row->name());
  EXPECT_EQ(groups, listed);
}

TEST_F(EnginesPane, TheRowsAreMadeOnce) {
  _engines.write("one.qvsc", engine);
  const auto opened = pane();
  const auto rows = opened->specifiers();
  _engines.write("two.qvsc", engine);
  EXPECT_EQ(opened->specifiers(), rows);
  EXPECT_THAT(*pane()->specifiers(), SizeIs(10));
}

TEST_F(EnginesPane, WithoutAFolderThereAreNoRows) {
  _device->mounts.unmount(std::string(_device.bundlePath) + "/engines");
  EXPECT_THAT(*pane()->specifiers(), IsEmpty());
}

TEST_F(EnginesPane, ADamagedFileStillMakesAGroupWithEmptyRows) {
  std::string deep;
  for (int i = 0; i < 100'000; ++i) deep += "{\"title\":";
  const std::string large = R"({"title": "Large", "x": ")" + std::string(50'000'000, 'x') + "\"}";
  for (const std::string& text :
       {std::string(), std::string("no JSON"), std::string("[1]"), std::string("\"title\""), deep, large,
        std::string("{\"title\": \"\xff\"}")}) {
    _engines.write("damaged.qvsc", text);
    const auto opened = pane();
    ASSERT_THAT(*opened->specifiers(), SizeIs(5));
    for (const auto& row : *opened->specifiers()) EXPECT_TRUE(row->performGetter().isNull());
    EXPECT_EQ(opened->specifiers()->front()->name(), "");
  }
}

TEST_F(EnginesPane, ValuesAreThoseOfTheFileWhateverTheirKind) {
  _engines.write(".qvsc", R"({"title": 7, "engine": ["a"], "version": 2, "developer": null, "enabled": 1})");
  const auto opened = pane();
  const auto rows = *opened->specifiers();
  ASSERT_THAT(rows, SizeIs(5));
  EXPECT_EQ(rows[0]->name(), "7");
  EXPECT_EQ(rows[1]->performGetter(), NSPlainValue(NSArray{"a"}));
  EXPECT_EQ(rows[2]->performGetter(), NSPlainValue(NSNumber("2")));
  EXPECT_TRUE(rows[3]->performGetter().isNull());
  EXPECT_EQ(rows[4]->performGetter(), NSPlainValue(NSNumber("1")));
  EXPECT_TRUE(rows[4]->performGetter().boolValue());
}

TEST_F(EnginesPane, AFolderNamedLikeAnEngineIsADamagedOne) {
  _engines.makeFolder("folder.qvsc");
  EXPECT_THAT(*pane()->specifiers(), SizeIs(5));
}

TEST_F(EnginesPane, ASwitchWritesATruthValueAndKeepsAllElse) {
  _engines.write("one.qvsc", R"({"z":1e2,"enabled":1,"big":12345678901234567890123,"n":-9223372036854775808,)"
                             R"("far":-1.5E+400,"title":"Ä","deep":{"y":[1.50,null],"a":{}}})");
  turn(false);
  EXPECT_EQ(contents("one.qvsc"),
            "{\n  \"z\": 1e2,\n  \"enabled\": false,\n  \"big\": 12345678901234567890123,\n"
            "  \"n\": -9223372036854775808,\n  \"far\": -1.5E+400,\n  \"title\": \"Ä\",\n  \"deep\": {\n    "
            "\"y\": [\n      1.50,\n"
            "      null\n    ],\n    \"a\": {}\n  }\n}\n");
  turn(true);
  EXPECT_THAT(contents("one.qvsc"), testing::HasSubstr("\"enabled\": true,\n  \"big\""));
}

TEST_F(EnginesPane, ASwitchOfAFileWithoutTheKeyAddsIt) {
  _engines.write("one.qvsc", R"({"title": "One"})");
  turn(true);
  EXPECT_EQ(contents("one.qvsc"), "{\n  \"title\": \"One\",\n  \"enabled\": true\n}\n");
}

TEST_F(EnginesPane, TheRowsOwnValueStaysUntilThePaneIsMadeAnew) {
  _engines.write("one.qvsc", engine);
  const auto opened = pane();
  switchOf(*opened)->performSetterWithValue(false);
  EXPECT_EQ(switchOf(*opened)->performGetter(), NSPlainValue(true));
  EXPECT_EQ(opened->customForSpec(*switchOf(*opened)), NSPlainValue(true));
  const auto again = pane();
  EXPECT_EQ(switchOf(*again)->performGetter(), NSPlainValue(false));
}

TEST_F(EnginesPane, EveryChangeSendsExactlyOneMessageAfterTheFileIsWritten) {
  test::PrivateBus bus;
  _device->messageBusAddress = bus.address();
  _engines.write("one.qvsc", engine);
  turn(false);
  EXPECT_THAT(bus.calls(), ElementsAre("/com/tolmarin/quaverly com.tolmarin.quaverly enginesChanged"));
  turn(false);
  turn(true);
  EXPECT_THAT(bus.calls(), SizeIs(2));
}

TEST_F(EnginesPane, AFileThatCannotBeReadStaysAsItIsAndTheMessageStillGoes) {
  test::PrivateBus bus;
  _device->messageBusAddress = bus.address();
  _engines.write("one.qvsc", "damaged");
  turn(true);
  EXPECT_EQ(contents("one.qvsc"), "damaged");
  EXPECT_THAT(bus.calls(), SizeIs(1));
  const auto opened = pane();
  const auto row = switchOf(*opened);
  ASSERT_EQ(std::remove((_engines / "one.qvsc").c_str()), 0);
  row->performSetterWithValue(true);
  CPDistributedMessagingCenter::finishSending();
  EXPECT_FALSE(std::filesystem::exists(_engines / "one.qvsc"));
  EXPECT_THAT(bus.calls(), SizeIs(1));
}

TEST_F(EnginesPane, AFolderThatCannotBeWrittenLeavesTheFileAndSaysWhyBeforeTheMessageGoes) {
  test::PrivateBus bus;
  _device->messageBusAddress = bus.address();
  std::vector<std::string> log;
  setLogSink([&](std::string_view line) {
    log.emplace_back(line);
    EXPECT_THAT(bus.calls(), IsEmpty());
  });
  _engines.write("one.qvsc", engine);
  _device->mounts.mount(std::string(_device.bundlePath) + "/engines", _engines.path(),
                        MountTable::Access::readOnly);
  turn(false);
  EXPECT_EQ(contents("one.qvsc"), engine);
  EXPECT_EQ(switchOf(*pane())->performGetter(), NSPlainValue(true));
  EXPECT_THAT(log, ElementsAre(testing::HasSubstr("engines/one.qvsc")));
  EXPECT_THAT(bus.calls(), SizeIs(1));
}

TEST_F(EnginesPane, WithoutTheMessagingClassNothingIsSentAndTheFileIsWritten) {
  test::PrivateBus bus;
  _device->messageBusAddress = bus.address();
  _device->absentClasses.insert("CPDistributedMessagingCenter");
  _engines.write("one.qvsc", engine);
  turn(false);
  EXPECT_THAT(contents("one.qvsc"), testing::HasSubstr("\"enabled\": false"));
  EXPECT_THAT(bus.calls(), IsEmpty());
}

TEST_F(EnginesPane, RowsOutliveTheirPaneWithoutHarm) {
  _engines.write("one.qvsc", engine);
  const auto row = switchOf(*pane());
  row->performSetterWithValue(false);
  EXPECT_TRUE(row->performGetter().isNull());
  EXPECT_EQ(contents("one.qvsc"), engine);
}

TEST_F(EnginesPane, IsFoundByItsName) {
  EXPECT_TRUE(allocKindFromString<PSListController>("QuaverlyEnginesSettingsController"));
}

TEST(ShippedEngines, AreWholeAndSaidInFull) {
  test::TestDevice device;
  device->mounts.mount(device.bundlePath, QUAVERLY_SOURCE_DIR "/resources/QuaverlySettings.bundle",
                       MountTable::Access::readOnly);
  const auto pane = make<QuaverlyEnginesSettingsController>();
  const auto rows = *pane->specifiers();
  ASSERT_THAT(rows, SizeIs(15));
  for (const auto& row : rows) {
    EXPECT_FALSE(row->name().empty());
    const auto value = row->performGetter();
    EXPECT_EQ(row->cellType() == PSCellType::titleValue, value.string() != nullptr) << row->name();
    EXPECT_EQ(row->cellType() == PSCellType::switchCell, value.boolean() != nullptr) << row->name();
  }
}

}  // namespace
}  // namespace quaverly
