#include "Host/Environment/DesktopLinks.h"

#include <gtest/gtest.h>

#include <map>

#include "Support/TemporaryFolder.h"

namespace quaverly::host {
namespace {

class Links : public testing::Test {
 protected:
  Links() {
    _folder.write("data/applications/bird.desktop", "[Desktop Entry]\n");
    _folder.write("system/applications/mail.desktop", "[Desktop Entry]\n");
  }
  bool handles(std::string_view scheme) const {
    return DesktopLinks([this](const char* name) -> std::optional<std::string> {
             const auto found = _environment.find(name);
             return found == _environment.end() ? std::nullopt : std::optional(found->second);
           })
        .handles(scheme);
  }

  test::TemporaryFolder _folder;
  std::map<std::string, std::string> _environment = {{"DISPLAY", ":0"},
                                                     {"HOME", _folder / "home"},
                                                     {"XDG_CONFIG_HOME", _folder / "config"},
                                                     {"XDG_CONFIG_DIRS", _folder / "etc"},
                                                     {"XDG_DATA_HOME", _folder / "data"},
                                                     {"XDG_DATA_DIRS", _folder / "system"}};
};

TEST_F(Links, AreHandledByApplicationsThatAListNames) {
  EXPECT_FALSE(handles("twitter"));
  _folder.write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/twitter=bird.desktop\n");
  EXPECT_TRUE(handles("twitter"));
  EXPECT_FALSE(handles("twitte"));
  EXPECT_FALSE(handles("other"));
  _folder.write("system/applications/mimeinfo.cache",
                "[MIME Cache]\nx-scheme-handler/mailto=gone.desktop;mail.desktop;\n");
  EXPECT_TRUE(handles("mailto"));
}

TEST_F(Links, AreNotHandledByWhatIsNotInstalledOrWasRemoved) {
  _folder.write(
      "config/mimeapps.list",
      "[Removed Associations]\nx-scheme-handler/twitter=bird.desktop\n"
      "[Added Associations]\nx-scheme-handler/other=gone.desktop\nx-scheme-handler/third=../bird.desktop\n");
  EXPECT_FALSE(handles("twitter"));
  EXPECT_FALSE(handles("other"));
  EXPECT_FALSE(handles("third"));
}

TEST_F(Links, AreNotHandledWithoutADesktop) {
  _folder.write("etc/mimeapps.list", "[Default Applications]\nx-scheme-handler/twitter=bird.desktop\n");
  EXPECT_TRUE(handles("twitter"));
  _environment.erase("DISPLAY");
  EXPECT_FALSE(handles("twitter"));
  _environment["WAYLAND_DISPLAY"] = "wayland-0";
  EXPECT_TRUE(handles("twitter"));
}

TEST_F(Links, HaveSchemesAndNothingElse) {
  _folder.write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/=bird.desktop\n");
  for (const auto* scheme : {"", "-x", "a b", "a\n", "a=b", "1a"}) EXPECT_FALSE(handles(scheme)) << scheme;
}

}  // namespace
}  // namespace quaverly::host
