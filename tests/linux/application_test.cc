// The menu-bar application as a person uses it: real clicks and keys, real notification servers.
#include "tests/linux/application_desktop.h"

namespace {

class ApplicationWithServer : public ApplicationDesktop, public testing::WithParamInterface<Server> {};

TEST_P(ApplicationWithServer, AClickOnTheIconClearsTheScreen) {
  beginDesktop(&GetParam());
  startApplication();
  const std::vector<std::uint32_t> ids = send(5);
  waitForTargets(5);
  keepPicture("before");
  clickIcon(Screen::kLeftButton);
  expectCleared(ids, GetParam());
  keepPicture("after");
  EXPECT_EQ(countLogged("handleClick type=2 modifiers=0"), 1);
}

INSTANTIATE_TEST_SUITE_P(Real, ApplicationWithServer, testing::Values(kMate, kLxqt),
                         [](const auto& server) { return server.param.name; });

}  // namespace
