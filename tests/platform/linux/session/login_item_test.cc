// Starting with the session.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/linux/files/desktop_entry.h"
#include "platform/linux/files/linux_login_item.h"
#include "tests/platform/linux/session/fake_process.h"
#include "tests/support/processes.h"
#include "tests/support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class LoginItem : public testing::Test {
 protected:
  void SetUp() override {
    process_.variables["XDG_CONFIG_DIRS"] = directory_.path() + "/first:" + directory_.path() + "/second";
    process_.variables["PATH"] = "/usr/bin:/bin";
  }

  static std::string write(const std::string& path, const std::string& content) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }

  std::string makeProgram(const std::string& name) {
    std::string path = write(directory_.path() + "/programs/" + name, "#!/bin/sh\necho started \"$0\"\n");
    fs::permissions(path, fs::perms::owner_all);
    return path;
  }

  [[nodiscard]] std::string own() const { return directory_.path() + "/.config/autostart/org.example.one.desktop"; }
  [[nodiscard]] std::string machine(const std::string& which) const {
    return directory_.path() + "/" + which + "/autostart/org.example.one.desktop";
  }

  TemporaryDirectory directory_;
  FakeProcess process_{directory_.path()};
  HLLinuxLoginItem item_{process_};
};

std::string entry(const std::string& lines) { return "[Desktop Entry]\nType=Application\nName=One\n" + lines; }

TEST_F(LoginItem, IsEnabledWhileRegistered) {
  EXPECT_EQ(item_.status(), HLLoginItemStatus::notRegistered);
  EXPECT_TRUE(item_.registerItem().ok);
  EXPECT_EQ(item_.status(), HLLoginItemStatus::enabled);
  EXPECT_TRUE(item_.registerItem().ok);
  const HLLoginItemOutcome outcome = item_.unregisterItem();
  EXPECT_TRUE(outcome.ok);
  EXPECT_EQ(outcome.error, std::nullopt);
  EXPECT_EQ(item_.status(), HLLoginItemStatus::notRegistered);
  EXPECT_TRUE(fs::is_empty(fs::path(own()).parent_path()));
  EXPECT_TRUE(item_.unregisterItem().ok);
}

TEST_F(LoginItem, WritesAutostartEntryNamedAfterBundle) {
  ASSERT_TRUE(item_.registerItem().ok);
  EXPECT_EQ(FileContent(own()),
            "[Desktop Entry]\nType=Application\nName=Hushlet\nComment=Clears notification banners\n"
            "TryExec=/usr/bin/env\nExec=\"/usr/bin/env\"\nTerminal=false\nX-GNOME-Autostart-enabled=true\n");
  process_.variables["XDG_CONFIG_HOME"] = directory_.path() + "/elsewhere";
  EXPECT_EQ(item_.status(), HLLoginItemStatus::notRegistered);
  ASSERT_TRUE(item_.registerItem().ok);
  EXPECT_TRUE(fs::exists(directory_.path() + "/elsewhere/autostart/org.example.one.desktop"));
}

TEST_F(LoginItem, StartsProgramsAtAnyPath) {
  for (const char* name :
       {"plain", "with blank", " a blank first", "100%f", "50%%", "quote\"d", "it's", "back\\slash", "trailing\\",
        "do$HOME", "`tick`", "tab\tbed", "new\nline", "a=b;c&d|e<f>(g)*?#~!", "ä 日本", "\\s\\n"}) {
    process_.executable = makeProgram(name);
    ASSERT_TRUE(item_.registerItem().ok) << name;
    EXPECT_EQ(item_.status(), HLLoginItemStatus::enabled) << FileContent(own());
    const HLDesktopEntry written = HLReadDesktopEntry(FileContent(own()));
    const bool asArgument = process_.executable->find('%') != std::string::npos;
    EXPECT_EQ(HLProgramOfExec(written.at("Exec")), asArgument ? "env" : process_.executable);
    EXPECT_EQ(HLTextOfDesktopString(written.at("TryExec")), process_.executable);
    fs::remove(*process_.executable);
    EXPECT_EQ(item_.status(), HLLoginItemStatus::notFound) << name;
  }
}

TEST(DesktopEntry, ProgramsAreQuotedByItsRules) {
  EXPECT_EQ(HLExecOfProgram("/usr/bin/one"), "\"/usr/bin/one\"");
  EXPECT_EQ(HLExecOfProgram("/a b"), "\"/a b\"");
  EXPECT_EQ(HLExecOfProgram("/a\"b"), R"("/a\\"b")");
  EXPECT_EQ(HLExecOfProgram("/a$b`c"), R"("/a\\$b\\`c")");
  EXPECT_EQ(HLExecOfProgram("/a\\b"), R"("/a\\\\b")") << "four of them, as the rules say";
  EXPECT_EQ(HLExecOfProgram("/a%b"), "env \"/a%%b\"");
  EXPECT_EQ(HLExecOfProgram("/a%=b"), "\"/a%%=b\"");
}

TEST(DesktopEntry, TakesTheFirstWordAsProgram) {
  EXPECT_EQ(HLProgramOfExec("one --two %U"), "one");
  EXPECT_EQ(HLProgramOfExec("  \"/a b/c\" \"d\""), "/a b/c");
  EXPECT_EQ(HLProgramOfExec("/a%%b"), "/a%b");
  EXPECT_EQ(HLProgramOfExec(R"("/a\\\\b")"), "/a\\b");
  EXPECT_EQ(HLProgramOfExec(""), std::nullopt);
  EXPECT_EQ(HLProgramOfExec("\"/a b"), std::nullopt);
  EXPECT_EQ(HLProgramOfExec("\"\""), std::nullopt);
}

TEST(DesktopEntry, OnlyItsOwnGroupIsRead) {
  const HLDesktopEntry read = HLReadDesktopEntry(
      "# Exec=comment\nExec=before\n[Desktop Entry]\r\n Exec = right \r\nName=\n[Desktop Action "
      "x]\nExec=other\nIcon=i");
  EXPECT_EQ(read, (HLDesktopEntry{{"Exec", "right"}, {"Name", ""}}));
}

TEST_F(LoginItem, IsNotRegisteredWhenSwitchedOff) {
  for (const char* off :
       {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n", "OnlyShowIn=KDE;\n", "NotShowIn=MATE;X;\n"}) {
    process_.variables["XDG_CURRENT_DESKTOP"] = "X-Other:MATE";
    write(own(), entry(std::string("Exec=env\n") + off));
    EXPECT_EQ(item_.status(), HLLoginItemStatus::notRegistered) << off;
  }
  for (const char* on :
       {"Hidden=false\n", "X-GNOME-Autostart-enabled=true\n", "OnlyShowIn=KDE;MATE;\n", "NotShowIn=KDE;\n"}) {
    write(own(), entry(std::string("Exec=env\n") + on));
    EXPECT_EQ(item_.status(), HLLoginItemStatus::enabled) << on;
  }
}

TEST_F(LoginItem, IsNotFoundWithoutItsProgram) {
  for (const char* gone : {"Exec=/nowhere/at/all\n", "Exec=no-such-program-anywhere\n", "Exec=\n", "",
                           "Exec=env\nTryExec=/nowhere/at/all\n", "Exec=/etc/passwd\n", "Exec=/usr\n"}) {
    write(own(), entry(gone));
    EXPECT_EQ(item_.status(), HLLoginItemStatus::notFound) << gone;
  }
}

TEST_F(LoginItem, UsesMachineEntryUnlessUserOverrides) {
  write(machine("second"), entry("Exec=env\n"));
  EXPECT_EQ(item_.status(), HLLoginItemStatus::enabled);
  write(machine("first"), entry("Exec=env\nHidden=true\n"));
  EXPECT_EQ(item_.status(), HLLoginItemStatus::notRegistered);
  fs::remove(machine("first"));
  write(own(), entry("Hidden=true\n"));
  EXPECT_EQ(item_.status(), HLLoginItemStatus::notRegistered);
}

TEST_F(LoginItem, HidesMachineEntryWhenUnregistered) {
  write(machine("second"), entry("Exec=env\n"));
  EXPECT_TRUE(item_.unregisterItem().ok);
  EXPECT_EQ(item_.status(), HLLoginItemStatus::notRegistered);
  EXPECT_THAT(FileContent(own()), HasSubstr("Hidden=true\n"));
  EXPECT_EQ(FileContent(machine("second")), entry("Exec=env\n"));
  EXPECT_TRUE(item_.registerItem().ok);
  EXPECT_EQ(item_.status(), HLLoginItemStatus::enabled);
}

TEST_F(LoginItem, ReplacesLinkButNotItsTarget) {
  const std::string shared = write(directory_.path() + "/applications/one.desktop", entry("Exec=/nowhere\n"));
  fs::create_directories(fs::path(own()).parent_path());
  fs::create_symlink(shared, own());
  EXPECT_EQ(item_.status(), HLLoginItemStatus::notFound);
  EXPECT_TRUE(item_.registerItem().ok);
  EXPECT_FALSE(fs::is_symlink(own()));
  EXPECT_EQ(FileContent(shared), entry("Exec=/nowhere\n"));
}

TEST_F(LoginItem, SaysWhyItCannotBeChanged) {
  ASSERT_TRUE(item_.registerItem().ok);
  const std::string folder = fs::path(own()).parent_path();
  fs::permissions(directory_.path(), fs::perms::all);
  fs::permissions(directory_.path() + "/.config", fs::perms::all);
  fs::permissions(folder,
                  fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read | fs::perms::others_exec);
  const std::string said = InUnprivilegedChildProcess([this]() -> std::string {
    std::string text;
    for (const HLLoginItemOutcome& outcome : {item_.registerItem(), item_.unregisterItem()}) {
      text += outcome.ok ? "ok\n" : outcome.error.value_or("no error") + "\n";
    }
    return text + std::to_string(static_cast<int>(item_.status()));
  });
  EXPECT_EQ(said,
            own() + " cannot be written: Permission denied\n" + own() + " cannot be removed: Permission denied\n1");
}

TEST_F(LoginItem, RefusesMissingRelativeOrInvalidPaths) {
  for (const std::optional<std::string>& program :
       {std::optional<std::string>(), std::optional<std::string>("relative"), std::optional<std::string>("/a\xFF")}) {
    process_.executable = program;
    const HLLoginItemOutcome outcome = item_.registerItem();
    EXPECT_FALSE(outcome.ok);
    EXPECT_TRUE(outcome.error && !outcome.error->empty());
  }
  EXPECT_FALSE(fs::exists(own()));
}

}  // namespace
