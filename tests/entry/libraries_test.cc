// What a command loads, as the dynamic loader tells it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "entry/modes.h"
#include "tests/support/processes.h"
#include "tests/support/temporary_directory.h"

namespace {

using testing::HasSubstr;
using testing::Not;

// Everything that the loader says while the program runs, where there is no desktop. Late loading counts too.
std::string loadedBy(std::vector<std::string> arguments) {
  const TemporaryDirectory home;
  arguments.insert(arguments.begin(), HUSHLET);
  return RunProgram(arguments, {{"HOME", home.path().c_str()},
                                {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"},
                                {"XDG_RUNTIME_DIR", nullptr},
                                {"LD_DEBUG", "files"}})
      .err;
}

// What has the mode come to its end soon.
std::vector<std::string> argumentsOf(const HLMode& mode) {
  const std::string name(mode.switchName);
  switch (mode.value) {
    case HLModeValue::none:
      return {name};
    case HLModeValue::required:
    case HLModeValue::expected:
      return {name, "/nonexistent/Ünïcode, x"};  // which is no file to write, either
    case HLModeValue::seconds:
      return {name, "0.01"};
  }
  return {};
}

TEST(Libraries, LoadNoToolkitForCommands) {
  for (const HLMode& mode : HLModes()) {
    if (mode.switchName.empty() || mode.switchName == "--daemon") continue;
    const std::string loaded = loadedBy(argumentsOf(mode));
    EXPECT_THAT(loaded, HasSubstr("libsystemd.so")) << mode.switchName << ": the loader tells nothing";
    for (const char* toolkit : {"libQt", "libgtk", "libgdk", "libX11", "libxcb", "libwayland", "libglib"}) {
      EXPECT_THAT(loaded, Not(HasSubstr(toolkit))) << mode.switchName;
    }
  }
}

TEST(Libraries, LoadUnicodeTablesOnDemand) {
  EXPECT_THAT(loadedBy({"--auto-close-match", "plain"}), Not(HasSubstr("libicu")));
  EXPECT_THAT(loadedBy({"--auto-close-match", "Ünïcode, x"}), HasSubstr("libicuuc"));
}

}  // namespace
