#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "Platform/Foundation/NSJSONSerialization.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/Foundation/NSPropertyListSerialization.h"
#include "Support/Command.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A list as Python writes it, from a Python expression.
std::string written(const std::string& expression, const std::string& form) {
  test::TemporaryFolder folder;
  test::python(
      "import plistlib, sys, datetime\n"
      "with open(sys.argv[1], 'wb') as f: plistlib.dump(" +
          expression + ", f, fmt=plistlib.FMT_" + form + ", sort_keys=False)",
      {folder / "list"});
  return test::contentsOf(folder / "list");
}

std::optional<NSPlainValue> read(const std::string& bytes) {
  return NSPropertyListSerialization::propertyListWithData(bytes);
}

const std::string settings =
    "{'title': 'Über', 'items': [{'cell': 'PSGroupCell'}, {'cell': 'PSSwitchCell', 'default': True, 'off': "
    "False, "
    "'n': 7, 'minus': -5, 'large': 2**40, 'real': 1.5, 'deep': [[['x']]], 'empty': {}, 'none': [], "
    "'long': 'x' * 300, 'date': datetime.datetime(2020, 1, 1), 'data': b'abc'}]}";

NSPlainValue expectedSettings() {
  const NSDictionary row = {{"cell", "PSSwitchCell"},
                            {"default", true},
                            {"off", false},
                            {"n", NSNumber("7")},
                            {"minus", NSNumber("-5")},
                            {"large", NSNumber("1099511627776")},
                            {"real", NSNumber("1.5")},
                            {"deep", NSArray{NSArray{NSArray{"x"}}}},
                            {"empty", NSDictionary()},
                            {"none", NSArray()},
                            {"long", std::string(300, 'x')},
                            {"date", NSPlainValue()},
                            {"data", NSPlainValue()}};
  return NSDictionary{{"title", "Über"}, {"items", NSArray{NSDictionary{{"cell", "PSGroupCell"}}, row}}};
}

std::string printed(const std::optional<NSPlainValue>& value) {
  return value ? NSJSONSerialization::prettyPrintedTextWithJSONObject(*value) : "damaged";
}

TEST(NSPropertyList, BothFormsReadAlike) {
  for (const char* form : {"XML", "BINARY"})
    EXPECT_EQ(printed(read(written(settings, form))), printed(expectedSettings())) << form;
}

TEST(NSPropertyList, CutAndMutatedListsHarmNobody) {
  std::mt19937 random(std::random_device{}());
  for (const char* form : {"XML", "BINARY"}) {
    const auto whole = written(settings, form);
    for (int i = 0; i < 5'000; ++i) {
      auto list = random() % 2 ? whole : whole.substr(0, random() % whole.size());
      for (int changes = 0; changes < 3 && !list.empty(); ++changes)
        list[random() % list.size()] = static_cast<char>(random());
      read(list);
    }
  }
  EXPECT_FALSE(read(""));
  EXPECT_FALSE(read("bplist00"));
  EXPECT_FALSE(read("no list"));
}

TEST(NSPropertyList, ContainersThatHoldEachOtherAgainAndAgainAreRefused) {
  // 40 arrays, each of which holds the next one twice; the last one holds the first.
  const auto doubled = [](bool circular) {
    std::string list = "bplist00";
    std::string offsets;
    for (int i = 0; i < 40; ++i) {
      const char next = static_cast<char>(i < 39 ? i + 1 : circular ? 0 : 40);
      offsets += static_cast<char>(list.size());
      list += std::string("\xA2") + next + next;
    }
    offsets += static_cast<char>(list.size());
    list += "\x09";
    const char table = static_cast<char>(list.size());
    return list + offsets + std::string(6, '\0') + "\x01\x01" + std::string(7, '\0') + "\x29" +
           std::string(8, '\0') + std::string(7, '\0') + table;
  };
  EXPECT_FALSE(read(doubled(false)));
  EXPECT_FALSE(read(doubled(true)));
}

TEST(NSPropertyList, DeepListsAreRefused) {
  std::string xml = "<plist version=\"1.0\">";
  for (int i = 0; i < 50'000; ++i) xml += "<array>";
  EXPECT_FALSE(read(xml));
}

TEST(NSPropertyList, WhatCannotBeReadIsLoggedAndNothing) {
  test::TestDevice device;
  std::vector<std::string> log;
  setLogSink([&](std::string_view line) { log.emplace_back(line); });
  device.bundle().makeFolder("Folder.plist");
  device.bundle().write("Damaged.plist", "<plist><dict>");
  device.bundle().write("Large.plist", std::string(NSPropertyListSerialization::largestFile + 1, ' '));
  for (const char* name : {"Missing", "Folder", "Damaged", "Large"}) {
    const std::string path = std::string(device.bundlePath) + "/" + name + ".plist";
    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithContentsOfFile(path));
  }
  EXPECT_THAT(
      log,
      ElementsAre(HasSubstr("Missing.plist\" cannot be read"), HasSubstr("Folder.plist\" cannot be read"),
                  HasSubstr("Damaged.plist\" is damaged"), HasSubstr("Large.plist\" is too large")));
}

}  // namespace
}  // namespace quaverly
