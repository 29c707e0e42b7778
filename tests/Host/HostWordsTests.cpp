#include "Host/Environment/HostWords.h"

#include <gtest/gtest.h>

#include "Platform/Device/Device.h"
#include "Support/TemporaryFolder.h"

namespace quaverly::host {
namespace {

class HostWordsTest : public testing::Test {
 protected:
  HostWords load(const std::vector<std::string>& languages) const {
    return HostWords::load(_folder.path(), languages);
  }
  HostWords with(const std::string& table) {
    _folder.write("de.lproj/Host.strings", table);
    return load({"de"});
  }

  test::TemporaryFolder _folder;
};

TEST_F(HostWordsTest, AWordIsTranslatedAndWhatIsUnknownStays) {
  const auto words = with("Cancel = Abbrechen; \"The file is empty.\" = \"Die Datei ist leer.\";");
  EXPECT_EQ(words.language(), "de");
  EXPECT_EQ(words.translated("Cancel"), "Abbrechen");
  EXPECT_EQ(words.translated("The file is empty."), "Die Datei ist leer.");
  EXPECT_EQ(words.translated("cancel"), "cancel");
  EXPECT_EQ(words.translated(""), "");
}

TEST_F(HostWordsTest, PlacesAreFilledInTheTranslationsOrder) {
  const auto words = with(
      "\"Port {1} is taken by {2} (process {3}).\" = \"{2} ({3}) belegt Port {1}.\"; \"{1} failed\" = "
      "\"{1}: nein\";");
  EXPECT_EQ(words.translated("Port 8080 is taken by a b (c) (process 12)."),
            "a b (c) (12) belegt Port 8080.");
  EXPECT_EQ(words.translated("Port 8080 is taken by you."), "Port 8080 is taken by you.");
  EXPECT_EQ(words.translated("it {1} failed"), "it {1}: nein");
}

TEST_F(HostWordsTest, TheSentenceWithTheMostWordsOfItsOwnIsMeant) {
  const auto words = with(
      "\"{1} cannot be used: {2}.\" = \"kurz {1} {2}\"; \"The folder {1} cannot be used: {2}.\" = \"lang {1} "
      "{2}\";");
  EXPECT_EQ(words.translated("The folder x cannot be used: y."), "lang x y");
  EXPECT_EQ(words.translated("It cannot be used: y."), "kurz It y");
}

TEST_F(HostWordsTest, APhraseInAPlaceIsTranslatedAndANameIsNot) {
  const auto words = with(
      "\"The file cannot be read: {1}.\" = \"Nicht lesbar: {1}.\"; \"the disk is full\" = voll; full = x;");
  EXPECT_EQ(words.translated("The file cannot be read: the disk is full."), "Nicht lesbar: voll.");
  EXPECT_EQ(words.translated("The file cannot be read: full."), "Nicht lesbar: full.");
}

TEST_F(HostWordsTest, TheReasonsOfErrorsAreInTheShippedTables) {
  const auto words = HostWords::load(QUAVERLY_SOURCE_DIR "/resources/host", {"de"});
  EXPECT_EQ(words.translated("The import server cannot start. Unable to bind socket to address."),
            "Der Importserver kann nicht starten. Der Socket kann nicht an die Adresse gebunden werden.");
  EXPECT_EQ(words.translated("It cannot be reached (Permission denied)."),
            "Sie ist nicht erreichbar (die Berechtigung fehlt).");
}

TEST_F(HostWordsTest, TheFirstLanguageWithATableIsSpokenAndEnglishIsOne) {
  _folder.write("fr.lproj/Host.strings", "Cancel = Annuler;");
  _folder.write("de.lproj/Host.strings", "Cancel = Abbrechen;");
  EXPECT_EQ(load({"sv-SE", "fr", "de"}).translated("Cancel"), "Annuler");
  EXPECT_EQ(load({"en", "de"}).translated("Cancel"), "Cancel");
  EXPECT_EQ(load({"en-GB", "de"}).language(), "en");
  EXPECT_EQ(load({"sv"}).language(), "en");
}

TEST_F(HostWordsTest, ADamagedTableIsNone) {
  EXPECT_EQ(with("Cancel = Abbrechen; \"").language(), "en");
}

TEST_F(HostWordsTest, WithoutADeviceThatSpeaksAllIsEnglish) {
  Device::current().systemWords = nullptr;
  EXPECT_EQ(inUsersLanguage("Cancel"), "Cancel");
  Device::current().systemWords = [](std::string_view english) { return std::string(english) + "!"; };
  EXPECT_EQ(inUsersLanguage("Cancel"), "Cancel!");
  Device::current().systemWords = nullptr;
}

}  // namespace
}  // namespace quaverly::host
