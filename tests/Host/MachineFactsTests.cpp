#include "Host/Environment/MachineFacts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Support/Command.h"
#include "Support/TemporaryFolder.h"

namespace quaverly::host {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

TEST(MachineFacts, TheMachinesNameIsTheKernels) {
  EXPECT_EQ(machineName() + "\n", test::run("uname -m"));
}

TEST(DeviceIdentity, IsAHashThatDoesNotShowTheMachinesOwn) {
  const test::TemporaryFolder etc;
  const std::string own = "0123456789abcdef0123456789abcdef";
  const auto identity = deviceIdentity(etc.write("machine-id", own + "\n"));
  EXPECT_THAT(identity, MatchesRegex("[0-9a-f]{40}"));
  EXPECT_THAT(own, Not(HasSubstr(identity.substr(0, 8))));
  EXPECT_EQ(identity, deviceIdentity(etc.write("again", own)));
  EXPECT_NE(identity, deviceIdentity(etc.write("other", "1123456789abcdef0123456789abcdef")));
  const auto independent = test::python(
      "import hmac, sys; print(hmac.new(sys.argv[1].encode(), b'com.tolmarin.quaverly', "
      "'sha256').hexdigest())",
      {own});
  EXPECT_EQ(independent.substr(0, 40), identity);
}

TEST(DeviceIdentity, IsEmptyWhereTheMachineHasNone) {
  const test::TemporaryFolder etc;
  EXPECT_EQ(deviceIdentity(etc / "missing"), "");
  EXPECT_EQ(deviceIdentity(etc.write("empty", "\n")), "");
  EXPECT_EQ(deviceIdentity(etc.write("installing", "uninitialized\n")), "");
}

TEST(MessageBusAddress, IsTheSessionsOrTheSocketInTheRuntimeFolder) {
  const auto address = [](std::optional<std::string> session, std::optional<std::string> runtime) {
    return messageBusAddress(
        [=](const char* name) { return std::string_view(name) == "XDG_RUNTIME_DIR" ? runtime : session; });
  };
  const test::TemporaryFolder runtime;
  const std::string folder = runtime.makeFolder("a b;c");
  EXPECT_EQ(address("unix:path=/x", folder), "unix:path=/x");
  EXPECT_EQ(address(std::nullopt, std::nullopt), "");
  EXPECT_EQ(address(std::nullopt, folder), "");
  test::python("import socket, sys; socket.socket(socket.AF_UNIX).bind(sys.argv[1])", {folder + "/bus"});
  EXPECT_EQ(address(std::nullopt, folder), "unix:path=" + runtime.path().string() + "/a%20b%3bc/bus");
}

}  // namespace
}  // namespace quaverly::host
