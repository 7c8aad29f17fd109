// Shortcuts in settings of GNOME that a file of the test's own keeps.
#include "platform/linux/qt/services/gnome_hot_keys.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "platform/linux/qt/services/linux_hot_keys.h"
#include "platform/linux/settings/program_output.h"
#include "tests/platform/linux/support/desktop_session.h"
#include "tests/support/temporary_directory.h"

namespace {

constexpr std::uint32_t kLetterN = 45;  // virtual key codes
constexpr std::uint32_t kLetterL = 37;
constexpr std::uint32_t kJISYen = 93;
constexpr std::uint32_t kCtrlAltSuper = HLHotKeyCommand | HLHotKeyOption | HLHotKeyControl;
constexpr const char* kMediaKeys = "org.gnome.settings-daemon.plugins.media-keys";

class GnomeHotKeys : public testing::Test {
 protected:
  static std::string customShortcuts() {
    return HLReadDesktopSetting(kMediaKeys, "custom-keybindings").value_or("none");
  }
  static std::string stored(const std::string& key) {
    const std::string path = "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/org-example/";
    return HLReadDesktopSetting(std::string(kMediaKeys) + ".custom-keybinding:" + path, key).value_or("none");
  }

  TemporaryDirectory directory_;
  SessionEnvironment environment_{Environment{{"GSETTINGS_BACKEND", "keyfile"},
                                              {"XDG_CONFIG_HOME", directory_.path()},
                                              {"HOME", directory_.path()},
                                              {"XDG_CURRENT_DESKTOP", "GNOME"},
                                              {"XDG_SESSION_TYPE", "wayland"},
                                              {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"}}};
  HLLinuxRunLoop runLoop_;
  HLQtHotKeys keys_{runLoop_, "org.example"};
};

TEST_F(GnomeHotKeys, ChangeNothingBeforeOneIsRecorded) {
  const HLHotKeyRegistration registration = keys_.registerHotKey(kLetterN, kCtrlAltSuper, {});
  EXPECT_EQ(registration.status, HLHotKeyStatus::failed);
  EXPECT_EQ(keys_.unsupportedReason().value_or("").find("Not active yet. Record a shortcut"), 0U);
  EXPECT_EQ(keys_.storageNote(), std::nullopt);
  EXPECT_EQ(customShortcuts(), "@as []");
}

TEST_F(GnomeHotKeys, AreKeptOnceRecorded) {
  ASSERT_EQ(keys_.userRecorded(kLetterN, kCtrlAltSuper), HLHotKeyStatus::success) << "also as the first call";
  EXPECT_EQ(stored("binding"), "'<Control><Alt><Super>n'");
  EXPECT_TRUE(stored("command").ends_with(" --dismiss-now'")) << stored("command");
  EXPECT_EQ(keys_.registerHotKey(kLetterN, kCtrlAltSuper, {}).status, HLHotKeyStatus::success);
  EXPECT_EQ(keys_.unsupportedReason(), std::nullopt);
  EXPECT_NE(keys_.storageNote(), std::nullopt);

  HLQtHotKeys nextStart(runLoop_, "org.example");
  EXPECT_EQ(nextStart.registerHotKey(kLetterN, kCtrlAltSuper, {}).status, HLHotKeyStatus::success);
  EXPECT_EQ(nextStart.registerHotKey(kLetterN, HLHotKeyCommand, {}).status, HLHotKeyStatus::failed) << "not that one";
  EXPECT_EQ(nextStart.unsupportedReason(),
            "GNOME's keyboard settings have <Control><Alt><Super>n instead. Record a shortcut to replace it.");
}

TEST_F(GnomeHotKeys, AreRemovedWhenCleared) {
  ASSERT_EQ(keys_.userRecorded(kLetterN, kCtrlAltSuper), HLHotKeyStatus::success);
  EXPECT_EQ(keys_.registerHotKey(kLetterN, kCtrlAltSuper, {}).status, HLHotKeyStatus::success);
  keys_.userCleared();
  EXPECT_EQ(keys_.storageNote(), std::nullopt);
  EXPECT_EQ(customShortcuts(), "@as []");
  EXPECT_EQ(stored("binding"), "''");
  EXPECT_EQ(keys_.registerHotKey(kLetterN, kCtrlAltSuper, {}).status, HLHotKeyStatus::failed);
}

TEST_F(GnomeHotKeys, RefuseWhatTheDesktopUses) {
  EXPECT_EQ(keys_.userRecorded(kLetterL, HLHotKeyCommand), HLHotKeyStatus::taken) << "it locks the screen";
  EXPECT_EQ(keys_.userRecorded(kJISYen, kCtrlAltSuper), HLHotKeyStatus::failed) << "a key without a name";
  EXPECT_EQ(customShortcuts(), "@as []");
}

TEST_F(GnomeHotKeys, LeaveOtherDesktopsAlone) {
  const SessionEnvironment other(Environment{{"XDG_CURRENT_DESKTOP", "sway"}});
  EXPECT_EQ(keys_.registerHotKey(kLetterN, kCtrlAltSuper, {}).status, HLHotKeyStatus::failed);
  EXPECT_EQ(keys_.userRecorded(kLetterN, kCtrlAltSuper), HLHotKeyStatus::success) << "there is nothing to keep";
  EXPECT_EQ(customShortcuts(), "@as []");
}

}  // namespace
