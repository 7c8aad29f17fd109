// The menu-bar application as a person uses it to clear the screen: real clicks and keys, real notification servers.
#include <csignal>

#include "tests/platform/linux/desktop/application_desktop.h"
#include "tests/support/personal_log.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class ApplicationWithServer : public ApplicationDesktop, public testing::WithParamInterface<Server> {};

TEST_P(ApplicationWithServer, ClearsTheScreenOnIconClick) {
  beginDesktopWith(GetParam());
  startApplication();
  const std::vector<std::uint32_t> ids = send(5);
  waitForTargets(5);
  keepPicture("before");
  clickIcon(Screen::kLeftButton);
  expectCleared(ids, GetParam());
  keepPicture("after");
  EXPECT_THAT(logged(), ElementsAre(HasSubstr(" trusted=true daemonReachable=false flavor=product "),
                                    "hotKey register label=⌃⌥⌘N status=0",
                                    "refreshStatusItem available=true visible=true", "handleClick type=2 modifiers=0",
                                    "dismissNotifications", "refreshStatusItem available=true visible=true",
                                    "dismissNotifications started", "refreshStatusItem available=true visible=true",
                                    StartsWith("dismissNotifications outcome ")));
}

TEST_P(ApplicationWithServer, ClearsByShortcutFromAnotherProgram) {
  beginDesktopWith(GetParam());
  startApplication();
  const auto other = session_->start({"xedit"});
  waitForWindow("xedit");
  int requests = 0;
  for (bool withNumLock : {false, true}) {
    if (withNumLock) screen_->press({KEY_NUMLOCK});
    const std::vector<std::uint32_t> ids = send(2);
    waitForTargets(2);
    screen_->press(kDefaultShortcut);
    expectCleared(ids, GetParam(), requests++);
    EXPECT_EQ(countLogged("hotKeyPressed"), requests);
  }
}

TEST_P(ApplicationWithServer, ClearsTheScreenFromTheMenu) {
  beginDesktopWith(GetParam());
  startApplication();
  const std::vector<std::uint32_t> ids = send(3);
  waitForTargets(3);
  const ScreenWindow menu = openMenu();
  EXPECT_EQ(countLogged("handleClick type=4 modifiers=0"), 1);
  keepPicture("menu");
  constexpr int kIntoFirstItem = 12;
  screen_->moveTo(menu.x + menu.width / 2, menu.y + kIntoFirstItem);
  screen_->click(Screen::kLeftButton);
  expectCleared(ids, GetParam());
}

TEST_P(ApplicationWithServer, ClearsTheScreenInPersonalFlavor) {
  const PersonalLogTurn log;
  beginDesktopWith(GetParam());
  startApplication({}, kPersonal);
  const std::vector<std::uint32_t> ids = send(3);
  waitForTargets(3);
  keepPicture("icon");
  clickIcon(Screen::kLeftButton);
  expectClosed(ids, GetParam());
  waitForTargets(0);
  (void)openMenu();
  keepPicture("menu");
  screen_->press({KEY_ESC});
}

INSTANTIATE_TEST_SUITE_P(Real, ApplicationWithServer, testing::Values(kMate, kLxqt, kXfce, kDunst),
                         [](const auto& server) { return server.param.name; });

class Application : public ApplicationDesktop {};

TEST_F(Application, AutoClosesBannersWhileSwitchedOn) {
  beginDesktopWith(kLxqt);
  startApplication();
  const auto sendAutomation = [this](const std::string& name) {
    return sender_->send("Shortcuts", name, "Running your automation");
  };
  const std::uint32_t before = sendAutomation("Dawn");
  waitForTargets(1);
  EXPECT_EQ(countLogged("auto-close watching"), 0);

  const std::string rules = R"("HLAutoCloseRules": ["Shortcuts|running your automation"])";
  storeDefaults("{" + rules + R"(, "HLAutoCloseAutomationBanners": true})");
  startApplication();
  waitForLogged("auto-close watching pid=" + std::to_string(server_->pid()) + " register=0");
  const std::uint32_t ordinary = sender_->send("Mail", "Lunch", "Running your automation at noon");
  const std::vector<std::uint32_t> automations = {sendAutomation("Morning"), sendAutomation("Noon")};
  ASSERT_TRUE(sender_->waitUntilClosed(automations, kTimeout));
  keepPicture("closed");
  EXPECT_EQ(sender_->closed(), (std::set<std::uint32_t>(automations.begin(), automations.end())));
  EXPECT_EQ(targets(), 2) << "the ordinary one, " << ordinary << ", and the one before, " << before;

  // The application also watches the server's successor.
  server_->signal(SIGKILL);
  ASSERT_TRUE(server_->wait(kTimeout));
  server_ = session_->startServer(kLxqt.command);
  waitForLogged("auto-close watching pid=" + std::to_string(server_->pid()) + " register=0");
  ASSERT_TRUE(sender_->waitUntilClosed({sendAutomation("Evening")}, kTimeout));

  storeDefaults("{" + rules + R"(, "HLAutoCloseAutomationBanners": false})");
  startApplication({"--open-settings"});
  waitForWindow(SettingsTitle);
  EXPECT_FALSE(findPart("Close Shortcuts Automation Banners"));
  (void)waitForPart("Close Banners by Your Own Rules");
  (void)sendAutomation("Night");
  waitForTargets(1);
}

TEST_F(Application, AutoClosesOnceTheServerAnswers) {
  beginDesktopWith(kLxqt);
  storeDefaults(R"({"HLAutoCloseRules": ["Chat|running late"], "HLAutoCloseAutomationBanners": true})");
  server_->signal(SIGSTOP);
  startApplication();
  waitForLogged("auto-close start failed nc=present");
  server_->signal(SIGCONT);
  waitForLogged("auto-close watching pid=" + std::to_string(server_->pid()) + " register=0");
  EXPECT_EQ(countLogged("auto-close start failed"), 1);
  ASSERT_TRUE(sender_->waitUntilClosed({sender_->send("Chat", "Ada", "Running late")}, kTimeout));
}

TEST_F(Application, AutoClosesBannersWithoutATree) {
  beginDesktopWith(kDunst);
  storeDefaults(R"({"HLAutoCloseRules": ["Chat|running late"], "HLAutoCloseAutomationBanners": true})");
  startApplication();
  waitForLogged("auto-close watching pid=" + std::to_string(server_->pid()) + " register=0");
  const std::uint32_t ordinary = sender_->send("Mail", "Lunch", "Running late at noon");
  const std::uint32_t wanted = sender_->send("Chat", "Ada", "Running late");
  ASSERT_TRUE(sender_->waitUntilClosed({wanted}, kTimeout));
  EXPECT_EQ(sender_->closed().count(ordinary), 0U);
  EXPECT_EQ(targets(), 1);
}

}  // namespace
