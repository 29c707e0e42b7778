#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <map>

#include "Host/Environment/BrowserStart.h"
#include "Host/Environment/DeviceFacts.h"
#include "Host/Environment/ProcessLimits.h"
#include "Support/TemporaryFolder.h"

namespace quaverly::host {
namespace {

using testing::ElementsAre;
using Variables = std::map<std::string, std::string>;

Environment with(const Variables& variables) {
  return [variables](const char* name) -> std::optional<std::string> {
    const auto found = variables.find(name);
    return found == variables.end() || found->second.empty() ? std::nullopt : std::optional(found->second);
  };
}

TEST(UserFolders, WithoutSettingsTheyAreTheUsualOnesInTheHomeFolder) {
  const test::TemporaryFolder home;
  const auto folders = UserFolders::find(with({{"HOME", home.path()}}));
  EXPECT_EQ(folders.downloads, home.path() / "Downloads");
  EXPECT_EQ(folders.music, home.path() / "Music");
  EXPECT_EQ(folders.data, home.path() / ".local/share/quaverly");
}

TEST(UserFolders, AreThoseOfTheUsersSettings) {
  const test::TemporaryFolder home;
  home.write(".config/user-dirs.dirs",
             "# comment XDG_MUSIC_DIR=\"/no\"\nXDG_MUSIC_DIR=\"$HOME/Musik/Alle\"\n  "
             "XDG_DOWNLOAD_DIR=\"/srv/in\"\n");
  const auto folders = UserFolders::find(with({{"HOME", home.path()}, {"XDG_DATA_HOME", "/srv/data"}}));
  EXPECT_EQ(folders.music, home.path() / "Musik/Alle");
  EXPECT_EQ(folders.downloads, "/srv/in");
  EXPECT_EQ(folders.data, "/srv/data/quaverly");
}

TEST(UserFolders, RelativeSettingsAreIgnored) {
  const test::TemporaryFolder home;
  home.write("c/user-dirs.dirs", "XDG_MUSIC_DIR=\"Musik\"\n");
  const auto folders = UserFolders::find(
      with({{"HOME", home.path()}, {"XDG_CONFIG_HOME", home / "c"}, {"XDG_DATA_HOME", "data"}}));
  EXPECT_EQ(folders.music, home.path() / "Music");
  EXPECT_EQ(folders.data, home.path() / ".local/share/quaverly");
}

TEST(LocaleIdentifier, IsTheFirstSettingWithoutItsEncoding) {
  const std::vector<std::pair<Variables, std::string>> cases = {
      {{{"LANG", "de_AT.UTF-8@euro"}}, "de_AT"},
      {{{"LANG", "de_AT.UTF-8"}, {"LC_TIME", "fr_FR"}}, "fr_FR"},
      {{{"LC_ALL", "ja_JP.UTF-8"}, {"LC_TIME", "fr_FR"}}, "ja_JP"},
      {{{"LANG", "C.UTF-8"}}, "en_US"},
      {{{"LANG", "POSIX"}}, "en_US"},
      {{}, "en_US"}};
  for (const auto& [variables, locale] : cases) EXPECT_EQ(localeIdentifier(with(variables)), locale);
}

TEST(PreferredLanguages, NameTheTableThatTheBundleHas) {
  const test::TemporaryFolder bundle;
  for (const auto* name : {"de.lproj", "zh-Hans.lproj", "pt-BR.lproj", "en.lproj"}) bundle.makeFolder(name);
  const auto languages = [&](const Variables& variables) {
    return preferredLanguages(with(variables), bundle.path());
  };
  EXPECT_THAT(languages({{"LANG", "de_AT.UTF-8"}}), ElementsAre("de"));
  EXPECT_THAT(languages({{"LANG", "zh_CN.UTF-8"}}), ElementsAre("zh-Hans"));
  EXPECT_THAT(languages({{"LANG", "zh_TW.UTF-8"}}), ElementsAre("zh-TW"));
  EXPECT_THAT(languages({{"LANG", "pt_BR.UTF-8"}}), ElementsAre("pt-BR"));
  EXPECT_THAT(languages({{"LANG", "sv_SE"}, {"LANGUAGE", "de_CH:pt_BR"}}),
              ElementsAre("de", "pt-BR", "sv-SE"));
  EXPECT_THAT(languages({{"LANG", "de_DE"}, {"LANGUAGE", "sv:pt_BR"}}),
              ElementsAre("pt-BR", "de", "sv"));  // those that there are words in come first
  EXPECT_THAT(languages({{"LANG", "C"}, {"LANGUAGE", "de"}}), ElementsAre("en"));
  EXPECT_THAT(languages({}), ElementsAre("en"));
}

TEST(TimeZoneName, IsTheEnvironmentsThenTheMachines) {
  const test::TemporaryFolder etc;
  EXPECT_EQ(timeZoneName(with({{"TZ", ":Asia/Tokyo"}}), etc.path()), "Asia/Tokyo");
  EXPECT_EQ(timeZoneName(with({}), etc.path()), "UTC");
  etc.write("timezone", "Europe/Berlin\n");
  EXPECT_EQ(timeZoneName(with({}), etc.path()), "Europe/Berlin");
  std::filesystem::create_symlink("/usr/share/zoneinfo/America/New_York", etc.path() / "localtime");
  EXPECT_EQ(timeZoneName(with({}), etc.path()), "America/New_York");
}

TEST(DescriptorLimit, IsRaisedAsFarAsIsAllowed) {
  rlimit limit{.rlim_cur = 64, .rlim_max = 0};
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  limit.rlim_max = std::min<rlim_t>(before.rlim_max, 4096);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  raiseDescriptorLimit();
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_EQ(limit.rlim_cur, limit.rlim_max);
}

TEST(FontFiles, AreThoseThatAreInstalled) {
  const test::TemporaryFolder fonts;
  EXPECT_TRUE(fontFiles(fonts.path()).empty());
  const auto thin = fonts.write("opentype/inter/Inter-Thin.otf", "x");
  const auto older = fonts.write("truetype/liberation/LiberationSans-Regular.ttf", "x");
  EXPECT_THAT(fontFiles(fonts.path()),
              ElementsAre(testing::Pair("Arial", older), testing::Pair("HelveticaNeue-UltraLight", thin)));
  const auto newer = fonts.write("truetype/liberation2/LiberationSans-Regular.ttf", "x");
  EXPECT_EQ(fontFiles(fonts.path()).at("Arial"), newer);
}

TEST(FontFiles, OfThisMachineAreAllFour) {
  EXPECT_EQ(fontFiles().size(), 4U);
}

TEST(SystemVersion, IsThatOfTheRelease) {
  const test::TemporaryFolder etc;
  EXPECT_EQ(systemVersion(etc.write("a", "NAME=x\nVERSION_ID=\"12\"\n")), "12");
  EXPECT_EQ(systemVersion(etc.write("b", "NAME=x\n")), "0");
  EXPECT_EQ(systemVersion(etc / "none"), "0");
}

TEST(BrowserCommand, IsTheUsersOwnOrTheDesktops) {
  const auto command = [](Variables variables) {
    variables["DISPLAY"] = ":0";
    return browserCommand(with(variables), "/d/open.html");
  };
  EXPECT_THAT(command({}), ElementsAre("xdg-open", "/d/open.html"));
  EXPECT_THAT(command({{"BROWSER", "surf"}}), ElementsAre("surf", "/d/open.html"));
  EXPECT_THAT(command({{"BROWSER", "surf --new %s -x:lynx"}}),
              ElementsAre("surf", "--new", "/d/open.html", "-x"));
  EXPECT_THAT(command({{"BROWSER", " :x"}}), ElementsAre("xdg-open", "/d/open.html"));
}

TEST(BrowserCommand, IsNoneWithoutADesktop) {
  EXPECT_THAT(browserCommand(with({{"BROWSER", "surf"}}), "/d/open.html"), ElementsAre());
  EXPECT_THAT(browserCommand(with({{"WAYLAND_DISPLAY", "w"}}), "/f"), ElementsAre("xdg-open", "/f"));
}

}  // namespace
}  // namespace quaverly::host
