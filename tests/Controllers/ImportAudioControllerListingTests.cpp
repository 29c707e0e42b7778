#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Controllers/ImportAudioController.h"
#include "Platform/Foundation/NSString.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

class Listing : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(controller->init(), controller.get());
    controller->loadView();
  }

  /// The item of that name in a fresh listing of the media folder.
  FileItem item(const std::string& name) {
    const std::string path = "/var/mobile/Media/" + name;
    for (const auto& item : controller->ItemsInFolder("/var/mobile/Media"))
      if (item.path() == path) return item;
    ADD_FAILURE() << name << " is not listed";
    return {};
  }
  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& item : controller->fileItems()) names.push_back(NSStringLastPathComponent(*item.path()));
    return names;
  }
  std::string openedFolder() const { return controller->openedFolder()->string(); }
  std::string subTitle() const { return controller->subTitleLabel()->text().value_or("nothing"); }
  std::string backTitle() const { return controller->temporaryBarButtonItem()->title().value_or("nothing"); }

  test::TestDevice device;
  Ref<ImportAudioController> controller = make<ImportAudioController>();
};

TEST_F(Listing, ANewViewShowsTheMediaFolder) {
  device.media().write("song.mp3", "x");
  controller->loadView();
  EXPECT_EQ(openedFolder(), "/var/mobile/Media");
  EXPECT_EQ(subTitle(), "/var/mobile/Media");
  EXPECT_EQ(backTitle(), "/mobile");
  EXPECT_THAT(names(), UnorderedElementsAre("song.mp3"));
}

TEST_F(Listing, TheBackButtonNamesTheFolderAboveWithASlash) {
  const std::pair<const char*, const char*> cases[] = {
      {"/", ""},
      {"/var", "/"},
      {"/var/mobile", "/var"},
      {"/var/mobile/Media", "/mobile"},
      {"/var/mobile/Media/Music", "/Media"},
      {"/var/mobile/Media/a b/\u00E9", "/a b"},
  };
  for (const auto& [folder, title] : cases) {
    controller->ItemsInFolder(folder);
    EXPECT_EQ(backTitle(), title) << folder;
    EXPECT_EQ(subTitle(), folder);
    EXPECT_EQ(openedFolder(), folder);
  }
}

TEST_F(Listing, TheOpenedFolderIsOneObjectOverwrittenInPlace) {
  const auto object = controller->openedFolder();
  controller->ItemsInFolder("/var");
  EXPECT_EQ(controller->openedFolder(), object);
  EXPECT_EQ(object->string(), "/var");
}

TEST_F(Listing, ListingTheOpenedFolderItselfKeepsItsText) {
  controller->ItemsInFolder(controller->openedFolder()->string());
  EXPECT_EQ(openedFolder(), "/var/mobile/Media");
}

TEST_F(Listing, BackGoesUpToTheRootAndStaysThere) {
  for (const char* folder : {"/var/mobile", "/var", "/", "/"}) {
    controller->temporaryBarButtonItem()->sendAction();
    EXPECT_EQ(openedFolder(), folder);
  }
  EXPECT_THAT(names(), UnorderedElementsAre("Library", "var"));
  EXPECT_EQ(backTitle(), "");
}

TEST_F(Listing, PathsJoinTheFolderAndTheName) {
  device.media().write("a.mp3", "x");
  for (const char* folder : {"/var/mobile/Media", "/var/mobile/Media/"})
    EXPECT_EQ(controller->ItemsInFolder(folder).at(0).path(), "/var/mobile/Media/a.mp3");
  EXPECT_THAT(controller->ItemsInFolder("/"), SizeIs(2));
  EXPECT_EQ(controller->ItemsInFolder("/").at(1).path(), "/var");
}

TEST_F(Listing, OnlyTheLastThreeCharactersMakeAnAudioFile) {
  const std::pair<const char*, bool> cases[] = {
      {"song.mp3", true},  {"notmp3", true}, {"mp3", true},       {".mp3", true},    {"song.MP3", false},
      {"song.Mp3", false}, {"a.m4a", false}, {"a.wav", false},    {"a.mp3 ", false}, {"mp3.txt", false},
      {"p3", false},       {"mp", false},    {"\u00E9mp3", true}, {"\xFFmp3", true},
  };
  for (const auto& [name, isAudioFile] : cases) {
    device.media().write(name, "x");
    EXPECT_EQ(item(name).isAudioFile(), isAudioFile) << name;
    EXPECT_FALSE(item(name).isDirectory());
  }
}

TEST_F(Listing, AFolderNamedLikeAnAudioFileIsAFolder) {
  device.media().makeFolder("album.mp3");
  const auto folder = item("album.mp3");
  EXPECT_TRUE(folder.isDirectory());
  EXPECT_FALSE(folder.isAudioFile());
  EXPECT_EQ(folder.size(), std::nullopt);
  EXPECT_TRUE(folder.date().has_value());
}

TEST_F(Listing, SizesAndDatesAreWrittenForPeople) {
  const timespec times[2] = {{1'700'000'000, 0}, {1'700'000'000, 0}};
  const auto path = device.media().write("song.mp3", std::string(1'500, 'x'));
  ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  device.media().write("empty", "");
  EXPECT_EQ(item("song.mp3").size(), "2 KB");
  EXPECT_EQ(item("song.mp3").date(), "14/11/2023 10:13 PM");
  EXPECT_EQ(item("empty").size(), "Zero KB");
  device->localeIdentifier = "ja_JP";
  device->timeZoneName = "Asia/Tokyo";
  EXPECT_EQ(item("song.mp3").date(), "15/11/2023 7:13 \u5348\u524D");
}

TEST_F(Listing, HiddenEntriesAreListedLikeAnyOther) {
  device.media().write(".hidden.mp3", "x");
  device.media().makeFolder(".folder");
  controller->setItems(controller->ItemsInFolder("/var/mobile/Media"));
  EXPECT_THAT(names(), UnorderedElementsAre(".hidden.mp3", ".folder"));
}

TEST_F(Listing, EntriesKeepTheOrderOfTheFileSystem) {
  for (int i = 0; i < 100; ++i) device.media().write(std::to_string(i * 7919 % 100) + ".mp3", "");
  std::vector<std::string> expected;
  for (const auto& entry : std::filesystem::directory_iterator(device.media().path()))
    expected.push_back(entry.path().filename());
  controller->setItems(controller->ItemsInFolder("/var/mobile/Media"));
  EXPECT_EQ(names(), expected);
}

TEST_F(Listing, LinksAreJudgedByWhatTheyLeadToAndDescribedAsThemselves) {
  device.media().write("folder/song.mp3", std::string(100'000, 'x'));
  std::filesystem::create_symlink("folder", device.media() / "to folder");
  std::filesystem::create_symlink("folder/song.mp3", device.media() / "to song.mp3");
  std::filesystem::create_symlink("nowhere", device.media() / "dangling.mp3");
  EXPECT_TRUE(item("to folder").isDirectory());
  EXPECT_EQ(item("to folder").size(), std::nullopt);
  EXPECT_TRUE(item("to song.mp3").isAudioFile());
  EXPECT_EQ(item("to song.mp3").size(), "15 bytes");
  EXPECT_FALSE(item("dangling.mp3").isDirectory());
  EXPECT_TRUE(item("dangling.mp3").isAudioFile());
  EXPECT_EQ(item("dangling.mp3").size(), "7 bytes");
  EXPECT_TRUE(item("dangling.mp3").date().has_value());
}

TEST_F(Listing, AnUnreadableFolderIsEmptyAndOpenedAllTheSame) {
  device.media().write("folder/song.mp3", "x");
  device.media().write("file", "x");
  ASSERT_EQ(chmod((device.media() / "folder").c_str(), 0), 0);
  ASSERT_EQ(chmod(device.media().path().c_str(), 0755), 0);
  const auto user = geteuid();
  if (user == 0) {  // root may read everything
    ASSERT_EQ(seteuid(65534), 0);
  }
  const std::pair<const char*, const char*> cases[] = {{"/var/mobile/Media/folder", "/Media"},
                                                       {"/var/mobile/Media/none", "/Media"},
                                                       {"/var/mobile/Media/file", "/Media"},
                                                       {"/etc", "/"}};
  for (const auto& [folder, title] : cases) {
    EXPECT_THAT(controller->ItemsInFolder(folder), IsEmpty()) << folder;
    EXPECT_EQ(openedFolder(), folder);
    EXPECT_EQ(subTitle(), folder);
    EXPECT_EQ(backTitle(), title);
  }
  ASSERT_EQ(seteuid(user), 0);
}

TEST_F(Listing, AnEntryWithoutAttributesHasNoDateAndNoSize) {
  device.media().write("folder/song.mp3", "x");
  ASSERT_EQ(chmod((device.media() / "folder").c_str(), 0444), 0);  // may be read but not entered
  ASSERT_EQ(chmod(device.media().path().c_str(), 0755), 0);
  const auto user = geteuid();
  if (user == 0) {
    ASSERT_EQ(seteuid(65534), 0);
  }
  const auto items = controller->ItemsInFolder("/var/mobile/Media/folder");
  ASSERT_EQ(seteuid(user), 0);
  ASSERT_THAT(items, SizeIs(1));
  EXPECT_FALSE(items[0].isDirectory());
  EXPECT_EQ(items[0].date(), std::nullopt);
  EXPECT_EQ(items[0].size(), "Zero KB");
  EXPECT_TRUE(items[0].isAudioFile());
}

TEST_F(Listing, NamesThatAreNotUTF8KeepTheirBytes) {
  device.media().write("caf\xE9.mp3", "x");
  const auto song = item("caf\xE9.mp3");
  EXPECT_EQ(NSStringWithReplacements(*song.path()), "/var/mobile/Media/caf\uFFFD.mp3");
}

TEST_F(Listing, EveryListingIsANewOne) {
  device.media().write("a", "x");
  controller->setItems(controller->ItemsInFolder("/var/mobile/Media"));
  device.media().write("b", "x");
  EXPECT_THAT(controller->ItemsInFolder("/var/mobile/Media"), SizeIs(2));
  EXPECT_THAT(controller->fileItems(), SizeIs(1));
}

TEST_F(Listing, WithoutAViewTheListingWorksAndTellsNobody) {
  const auto bare = make<ImportAudioController>();
  device.media().write("a.mp3", "x");
  EXPECT_THAT(bare->ItemsInFolder("/var/mobile/Media"), SizeIs(1));
  EXPECT_FALSE(bare->openedFolder());
  EXPECT_FALSE(bare->temporaryBarButtonItem());
}

TEST_F(Listing, AButtonOutlivesItsScreenAndThenDoesNothing) {
  const auto button = controller->temporaryBarButtonItem();
  controller = nullptr;
  button->sendAction();
  EXPECT_EQ(button->title(), "/mobile");
}

TEST(ImportAudioController, InitMakesEmptyLabels) {
  const auto controller = make<ImportAudioController>();
  EXPECT_FALSE(controller->subTitleLabel());
  controller->init();
  for (const auto& label :
       {controller->titleLabel(), controller->subTitleLabel(), controller->statusLabel()}) {
    ASSERT_TRUE(label);
    EXPECT_EQ(label->text(), std::nullopt);
  }
}

}  // namespace
}  // namespace quaverly
