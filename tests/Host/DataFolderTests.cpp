#include "Host/Environment/DataFolder.h"

#include <gtest/gtest.h>

#include "Support/TemporaryFolder.h"

namespace quaverly::host {
namespace {

namespace fs = std::filesystem;

class EngineCopies : public testing::Test {
 protected:
  EngineCopies() { _shipped.write("a.qvsc", "first"); }

  void provide() { EXPECT_FALSE(provideEngines(_shipped.path(), _own)); }
  std::string copy(const char* name) const { return test::contentsOf(_own / name); }

  test::TemporaryFolder _shipped;
  test::TemporaryFolder _data;
  const fs::path _own = _data.path() / "engines";
};

TEST_F(EngineCopies, AreMadeAtTheFirstStart) {
  fs::permissions(_shipped.path() / "a.qvsc", fs::perms::owner_read);
  provide();
  EXPECT_EQ(copy("a.qvsc"), "first");
  EXPECT_NE(fs::status(_own / "a.qvsc").permissions() & fs::perms::owner_write, fs::perms::none);
}

TEST_F(EngineCopies, StayAsTheUserLeftThemWhenTheProgramIsRenewed) {
  _shipped.write("b.qvsc", "b");
  provide();
  _data.write("engines/a.qvsc", "changed");
  fs::remove(_own / "b.qvsc");
  _shipped.write("a.qvsc", "second");
  _shipped.write("c.qvsc", "new");
  provide();
  EXPECT_EQ(copy("a.qvsc"), "changed");
  EXPECT_FALSE(fs::exists(_own / "b.qvsc"));
  EXPECT_EQ(copy("c.qvsc"), "new");
}

TEST_F(EngineCopies, ReplaceNoFileThatTheUserMade) {
  _data.write("engines/a.qvsc", "the user's own");
  provide();
  EXPECT_EQ(copy("a.qvsc"), "the user's own");
}

TEST_F(EngineCopies, SayWhenTheyCannotBeMade) {
  _data.write("engines", "a file");
  EXPECT_TRUE(provideEngines(_shipped.path(), _own));
}

TEST(DataFolder, IsTheUsersAlone) {
  const test::TemporaryFolder home;
  const fs::path folder = home.path() / "x/y/quaverly";
  EXPECT_FALSE(makeDataFolder(folder));
  EXPECT_FALSE(makeDataFolder(folder));
  EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
  home.write("file", "");
  EXPECT_TRUE(makeDataFolder(home.path() / "file/quaverly"));
}

}  // namespace
}  // namespace quaverly::host
