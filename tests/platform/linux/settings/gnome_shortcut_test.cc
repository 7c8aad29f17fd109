// The custom shortcut, in settings of GNOME that a file of the test's own keeps.
#include "platform/linux/settings/gnome_shortcut.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/linux/settings/program_output.h"
#include "tests/platform/linux/support/desktop_session.h"
#include "tests/support/temporary_directory.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSchema = "org.gnome.settings-daemon.plugins.media-keys";
const std::string kFolder = "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/";

class GnomeShortcut : public testing::Test {
 protected:
  static std::string setting(const std::string& key, const std::string& path = "") {
    const std::string schema = path.empty() ? kSchema : std::string(kSchema) + ".custom-keybinding:" + path;
    return HLReadDesktopSetting(schema, key).value_or("none");
  }

  // Another custom shortcut of the user's.
  static void setOther(const std::string& binding) {
    const std::string path = kFolder + "custom0/";
    const std::string schema = std::string(kSchema) + ".custom-keybinding:" + path;
    ASSERT_TRUE(HLProgramOutput({"gsettings", "set", kSchema, "custom-keybindings", "['" + path + "']"}));
    ASSERT_TRUE(HLProgramOutput({"gsettings", "set", schema, "name", "'Lamp'"}));
    ASSERT_TRUE(HLProgramOutput({"gsettings", "set", schema, "binding", "'" + binding + "'"}));
  }

  TemporaryDirectory directory_;
  SessionEnvironment environment_{Environment{{"GSETTINGS_BACKEND", "keyfile"},
                                              {"XDG_CONFIG_HOME", directory_.path()},
                                              {"HOME", directory_.path()},
                                              {"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"}}};
  const HLGnomeShortcut shortcut_{"com.tessaly.hushlet", "Clear it's", "'/opt/a b/hushlet' --dismiss-now"};
  const std::string path_ = kFolder + "com-tessaly-hushlet/";
};

TEST_F(GnomeShortcut, IsOfferedByGnomeOnly) {
  EXPECT_TRUE(HLGnomeShortcut::isOffered());
  const SessionEnvironment other(Environment{{"XDG_CURRENT_DESKTOP", "X-GNOME-Not:KDE"}});
  EXPECT_FALSE(HLGnomeShortcut::isOffered());
}

TEST_F(GnomeShortcut, IsStoredAsACustomKeybinding) {
  EXPECT_EQ(shortcut_.accelerator(), std::nullopt);
  ASSERT_TRUE(shortcut_.set("<Control><Alt><Super>n"));
  EXPECT_EQ(shortcut_.accelerator(), "<Control><Alt><Super>n");
  EXPECT_EQ(setting("custom-keybindings"), "['" + path_ + "']");
  EXPECT_EQ(setting("name", path_), "\"Clear it's\"");
  EXPECT_EQ(setting("command", path_), "\"'/opt/a b/hushlet' --dismiss-now\"");
  ASSERT_TRUE(shortcut_.set("<Super>F5"));
  EXPECT_EQ(shortcut_.accelerator(), "<Super>F5");
  EXPECT_EQ(setting("custom-keybindings"), "['" + path_ + "']") << "listed once";
}

TEST_F(GnomeShortcut, CannotBeSetWithoutGnomesSchemas) {
  const SessionEnvironment other(Environment{{"XDG_DATA_DIRS", directory_.path()}});
  EXPECT_FALSE(HLGnomeShortcut::isOffered());
  EXPECT_FALSE(shortcut_.set("<Super>F5"));
}

TEST_F(GnomeShortcut, LeavesOthersAlone) {
  setOther("<Super>k");
  ASSERT_TRUE(shortcut_.set("<Super>F5"));
  EXPECT_EQ(setting("custom-keybindings"), "['" + kFolder + "custom0/', '" + path_ + "']");
  shortcut_.remove();
  EXPECT_EQ(setting("custom-keybindings"), "['" + kFolder + "custom0/']");
  EXPECT_EQ(setting("binding", kFolder + "custom0/"), "'<Super>k'");
}

TEST_F(GnomeShortcut, LeavesNothingWhenRemoved) {
  ASSERT_TRUE(shortcut_.set("<Super>F5"));
  shortcut_.remove();
  EXPECT_EQ(shortcut_.accelerator(), std::nullopt);
  EXPECT_EQ(setting("custom-keybindings"), "@as []");
  EXPECT_EQ(setting("binding", path_), "''");
  EXPECT_EQ(setting("command", path_), "''");
}

TEST_F(GnomeShortcut, NamesTheOwnerOfTheKeys) {
  EXPECT_EQ(shortcut_.otherOwner("<Control><Alt><Super>n"), std::nullopt);
  EXPECT_EQ(shortcut_.otherOwner("<Super>l"), "screensaver");
  EXPECT_EQ(shortcut_.otherOwner("<Alt>F4"), "close");
  setOther("<Primary><Alt>K");
  EXPECT_EQ(shortcut_.otherOwner("<Alt><Control>k"), "Lamp");
  ASSERT_TRUE(shortcut_.set("<Super>F5"));
  EXPECT_EQ(shortcut_.otherOwner("<Super>F5"), std::nullopt) << "its own";
}

TEST(GnomeSettings, AreReadAsTexts) {
  EXPECT_THAT(HLTextsOfSetting("@as []"), IsEmpty());
  EXPECT_THAT(HLTextsOfSetting("['a b', \"it's\", 'back\\\\slash']"), ElementsAre("a b", "it's", "back\\slash"));
  EXPECT_THAT(HLTextsOfSetting("''"), ElementsAre(""));
  EXPECT_THAT(HLTextsOfSetting("'cut\\"), ElementsAre("cut\\"));
}

TEST(GnomeSettings, CompareAccelerators) {
  EXPECT_TRUE(HLAreSameAccelerators("<Primary><Mod1>N", "<Alt><Control>n"));
  EXPECT_TRUE(HLAreSameAccelerators("<Mod4>f5", "<Super>F5"));
  EXPECT_FALSE(HLAreSameAccelerators("<Super>n", "<Shift><Super>n"));
  EXPECT_FALSE(HLAreSameAccelerators("<Super>n", "<Super>m"));
  EXPECT_FALSE(HLAreSameAccelerators("", "<Super>m"));
}

}  // namespace
