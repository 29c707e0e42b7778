#include "Other/LocalizedStrings.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "Platform/Foundation/StringTables/StringTable.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

constexpr const char* keys[] = {"LOADING", "NO_FILES", "IMPORT",    "IMPORT_SUCCESS",
                                "ENGINE",  "VERSION",  "DEVELOPER", "ENABLED"};

class Localized : public ::testing::Test {
 protected:
  void writeTable(const std::string& language, std::string_view table) {
    device.bundle().write(language + ".lproj/Localizable.strings", table);
  }
  void setLanguages(std::vector<std::string> languages) { device->preferredLanguages = std::move(languages); }
  static std::string text(std::string_view key) {
    return LocalizedStrings::languageSelectedStringForKey(key);
  }

  test::TestDevice device;
};

TEST_F(Localized, TheFirstPreferredLanguageDecides) {
  writeTable("en", "IMPORT = Import;");
  writeTable("de", "IMPORT = Importieren;");
  writeTable("fr", "IMPORT = Importer;");
  setLanguages({"de", "fr"});
  EXPECT_EQ(text("IMPORT"), "Importieren");
  setLanguages({"fr", "de"});
  EXPECT_EQ(text("IMPORT"), "Importer");
  EXPECT_EQ(LocalizedStrings::englishStringForKey("IMPORT"), "Import");
}

TEST_F(Localized, ALanguageWithoutAFolderIsEnglishWhateverComesSecond) {
  writeTable("en", "IMPORT = Import;");
  writeTable("fr", "IMPORT = Importer;");
  setLanguages({"sv", "fr"});
  EXPECT_EQ(text("IMPORT"), "Import");
}

TEST_F(Localized, ARegionalLanguageIsNotCutToItsBase) {
  writeTable("en", "IMPORT = Import;");
  writeTable("de", "IMPORT = Importieren;");
  writeTable("pt-BR", "IMPORT = Importar;");
  setLanguages({"de-AT"});
  EXPECT_EQ(text("IMPORT"), "Import");
  setLanguages({"pt-BR"});
  EXPECT_EQ(text("IMPORT"), "Importar");
}

TEST_F(Localized, AKeyThatTheLanguageLacksIsEnglish) {
  writeTable("en", "IMPORT = Import; LOADING = Loading;");
  writeTable("de", "IMPORT = Importieren;");
  setLanguages({"de"});
  EXPECT_EQ(text("LOADING"), "Loading");
}

TEST_F(Localized, ATextEqualToItsKeyIsEnglish) {
  writeTable("en", "IMPORT = Import;");
  writeTable("de", "IMPORT = IMPORT;");
  setLanguages({"de"});
  EXPECT_EQ(text("IMPORT"), "Import");
}

TEST_F(Localized, AnEmptyTextIsAText) {
  writeTable("en", "IMPORT = Import;");
  writeTable("de", "IMPORT = \"\";");
  setLanguages({"de"});
  EXPECT_EQ(text("IMPORT"), "");
}

TEST_F(Localized, AKeyInNeitherTableIsItself) {
  writeTable("en", "IMPORT = Import;");
  writeTable("de", "IMPORT = Importieren;");
  setLanguages({"de"});
  EXPECT_EQ(text("NO_FILES"), "NO_FILES");
  EXPECT_EQ(LocalizedStrings::englishStringForKey("NO_FILES"), "NO_FILES");
  EXPECT_EQ(text(""), "");
}

TEST_F(Localized, ADamagedTableFallsThroughToEnglishAndThenToTheKey) {
  writeTable("en", "IMPORT = Import;");
  writeTable("de", "IMPORT = Importieren oops;");
  writeTable("fr", "IMPORT = \"Importer;");
  for (const char* language : {"de", "fr"}) {
    setLanguages({language});
    EXPECT_EQ(text("IMPORT"), "Import") << language;
    EXPECT_EQ(text("NO_FILES"), "NO_FILES") << language;
  }
}

TEST_F(Localized, ADamagedEnglishTableYieldsTheKey) {
  writeTable("en", "IMPORT = = Import;");
  setLanguages({"de"});
  EXPECT_EQ(text("IMPORT"), "IMPORT");
}

TEST_F(Localized, WithoutATableAFolderABundleOrALanguageTheKeyIsShown) {
  EXPECT_EQ(text("NO_FILES"), "NO_FILES");
  device.bundle().makeFolder("en.lproj");
  EXPECT_EQ(text("NO_FILES"), "NO_FILES");
  setLanguages({});
  EXPECT_EQ(text("NO_FILES"), "NO_FILES");
  device->mounts.unmount(device.bundlePath);
  EXPECT_EQ(text("NO_FILES"), "NO_FILES");
  EXPECT_EQ(LocalizedStrings::englishStringForKey("NO_FILES"), "NO_FILES");
}

TEST_F(Localized, ALanguageIsAFolderNameAndNothingElse) {
  writeTable("en", "IMPORT = Import;");
  device.media().write("evil.lproj/Localizable.strings", "IMPORT = Evil;");
  for (const char* language : {"../../../etc/en", "", ".", "/", "en/../de"}) {
    setLanguages({language});
    EXPECT_EQ(text("IMPORT"), "Import") << language;
  }
}

TEST_F(Localized, AnyThreadMayAsk) {
  writeTable("en", "IMPORT = Import;");
  writeTable("de", "IMPORT = Importieren;");
  setLanguages({"de"});
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([] {
      for (int repeat = 0; repeat < 200; ++repeat) ASSERT_EQ(text("IMPORT"), "Importieren");
    });
  for (auto& thread : threads) thread.join();
}

/// A table of the bundle that is shipped.
StringTable shippedTable(const std::string& language) {
  const auto path = std::string(QUAVERLY_SOURCE_DIR "/resources/QuaverlySettings.bundle/") + language +
                    ".lproj/Localizable.strings";
  auto table = StringTable::parse(test::contentsOf(path));
  if (!table) throw std::runtime_error("damaged: " + path);
  return *table;
}

TEST(ShippedTables, EveryLanguageHasAllWords) {
  for (const char* language : {"en", "de", "es", "fr", "it", "ja", "pt-BR", "ru", "zh-Hans"}) {
    const auto table = shippedTable(language);
    EXPECT_EQ(table.size(), std::size(keys)) << language;
    for (const char* key : keys) {
      const auto* text = table.find(key);
      ASSERT_TRUE(text) << language << " lacks " << key;
      EXPECT_FALSE(text->empty());
      EXPECT_NE(*text, key) << language;
    }
  }
}

TEST(ShippedTables, AreWhatTheScreensSay) {
  test::TestDevice device;
  device->mounts.mount(device.bundlePath, QUAVERLY_SOURCE_DIR "/resources/QuaverlySettings.bundle",
                       MountTable::Access::readOnly);
  device->preferredLanguages = {"de"};
  EXPECT_EQ(LocalizedStrings::languageSelectedStringForKey("IMPORT"), "Importieren");
  EXPECT_EQ(LocalizedStrings::englishStringForKey("NO_FILES"), "No files here");
}

}  // namespace
}  // namespace quaverly
