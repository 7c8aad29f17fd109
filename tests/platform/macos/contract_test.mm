// macOS keeps every host's promises.
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <stdexcept>

#include "platform/macos/macos_host.h"
#include "tests/support/platform_contract.h"

extern char** environ;

namespace {

// The process that shows the window; it ends when this end of its standard input is closed.
class WindowProcess {
 public:
  WindowProcess() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    posix_spawn_file_actions_addclose(&actions, ends[1]);
    std::string program = CONTRACT_WINDOW;
    std::array<char*, 2> arguments = {program.data(), nullptr};
    const int error = posix_spawn(&pid_, program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[0]);
    end_ = ends[1];
    if (error != 0) throw std::runtime_error("cannot start " + program);
  }
  WindowProcess(const WindowProcess&) = delete;
  WindowProcess& operator=(const WindowProcess&) = delete;
  ~WindowProcess() {
    close(end_);
    waitpid(pid_, nullptr, 0);
  }

  [[nodiscard]] std::int32_t pid() const { return pid_; }

 private:
  pid_t pid_ = 0;
  int end_ = -1;
};

class MacContractDesktop final : public ContractDesktop {
 public:
  MacContractDesktop() {
    if (!platform().accessibility->isProcessTrusted(false)) {
      throw std::runtime_error("the program that starts the tests needs the Accessibility grant");
    }
    HLRunLoop& loop = platform().runLoop;
    const double deadline = loop.now() + 20;
    while (!isListed() || closingAction().empty()) {
      if (loop.now() > deadline) throw std::runtime_error("the window does not come up");
      loop.runFor(0.05);
    }
  }

  const HLPlatform& platform() override { return host_.platform(); }
  std::int32_t pid() override { return window_.pid(); }
  // The name of a custom action says more than what the application calls it.
  std::string removingAction() override { return closingAction(); }

 private:
  [[nodiscard]] bool isListed() { return platform().runningApplications->find(pid()).has_value(); }

  [[nodiscard]] std::string closingAction() {
    const HLElementRef root = platform().accessibility->createApplication(pid());
    return root == nullptr ? "" : closingActionBelow(root, "AXWindows");
  }

  [[nodiscard]] std::string closingActionBelow(const HLElementRef& element, std::string_view list) {
    for (const std::string& name : element->copyActionNames().names) {
      if (name.starts_with("Name:Close")) return name;
    }
    const HLAttribute attribute = element->copyAttributeValue(list);
    const HLArray* members = attribute.value.as<HLArray>();
    if (members == nullptr) return "";
    for (const HLValue& member : *members) {
      const HLElementRef* below = member.as<HLElementRef>();
      const std::string name = below == nullptr ? "" : closingActionBelow(*below, "AXChildren");
      if (!name.empty()) return name;
    }
    return "";
  }

  HLMacHost host_;
  WindowProcess window_;
};

INSTANTIATE_TEST_SUITE_P(MacOS, PlatformContract,
                         testing::Values(PlatformContract::Case{"Window", std::make_unique<MacContractDesktop>}),
                         ContractCaseName);

class MacContractHost : public ContractHost {
 public:
  const HLPlatform& platform() override { return host_.platform(); }

 private:
  HLMacHost host_;
};

INSTANTIATE_TEST_SUITE_P(MacOS, HostContract,
                         testing::Values(HostContract::Case{"MacOS", std::make_unique<MacContractHost>}),
                         ContractCaseName);

class AccessibilityEvents : public testing::Test {
 protected:
  MacContractDesktop desktop_;
  HLAccessibility& accessibility_ = desktop_.platform().accessibility;
  HLRunLoop& loop_ = desktop_.platform().runLoop;

  bool eventually(const std::function<bool()>& condition) {
    const double deadline = loop_.now() + 10;
    while (!condition() && loop_.now() < deadline) loop_.runFor(0.02);
    return condition();
  }

  // Closes an alert of the window.
  void close() {
    const std::string action = desktop_.removingAction();
    std::vector<HLElementRef> elements = {accessibility_.createApplication(desktop_.pid())};
    for (std::size_t i = 0; i < elements.size(); ++i) {
      if (elements[i]->performAction(action) == HLAXErrorSuccess) return;
      for (std::string_view list : {"AXWindows", "AXChildren"}) {
        const HLAttribute members = elements[i]->copyAttributeValue(list);
        for (const HLValue& member :
             members.value.as<HLArray>() == nullptr ? HLArray() : *members.value.as<HLArray>()) {
          if (const HLElementRef* element = member.as<HLElementRef>()) elements.push_back(*element);
        }
      }
    }
    FAIL() << "nothing closes";
  }
};

TEST_F(AccessibilityEvents, CoverDescendantsOnlyWhileAttached) {
  int all = 0;
  int ofWindow = 0;
  const auto observer =
      accessibility_.createObserver(desktop_.pid(), [&](const HLElementRef& element, std::string_view notification) {
        ++all;
        EXPECT_EQ(notification, "AXLayoutChanged");
        const HLAttribute role = element->copyAttributeValue("AXRole");
        const std::string* text = role.value.as<std::string>();
        if (text != nullptr && *text == "AXWindow") ++ofWindow;
      });
  ASSERT_NE(observer, nullptr);
  const HLElementRef root = accessibility_.createApplication(desktop_.pid());
  EXPECT_EQ(observer->addNotification(root, "AXLayoutChanged"), HLAXErrorSuccess);
  observer->attach();
  close();
  EXPECT_TRUE(eventually([&] { return ofWindow > 0; }));
  observer->detach();
  const int before = all;
  close();
  loop_.runFor(0.5);
  EXPECT_EQ(all, before);
  EXPECT_EQ(observer->removeNotification(root, "AXLayoutChanged"), HLAXErrorSuccess);
}

TEST_F(AccessibilityEvents, MayEndTheirObserver) {
  int calls = 0;
  std::unique_ptr<HLObserver> observer;
  observer = accessibility_.createObserver(desktop_.pid(), [&](const HLElementRef&, std::string_view) {
    ++calls;
    observer = nullptr;
  });
  ASSERT_NE(observer, nullptr);
  const HLElementRef root = accessibility_.createApplication(desktop_.pid());
  EXPECT_EQ(observer->addNotification(root, "AXLayoutChanged"), HLAXErrorSuccess);
  observer->attach();
  close();
  EXPECT_TRUE(eventually([&] { return observer == nullptr; }));
  EXPECT_EQ(calls, 1);
}

class Applications : public testing::Test {
 protected:
  HLMacHost host_;
  HLRunningApplications& applications_ = host_.platform().runningApplications;
  HLRunLoop& loop_ = host_.platform().runLoop;

  [[nodiscard]] bool lists(std::int32_t pid) {
    for (const HLRunningApplication& application : applications_.list()) {
      if (application.pid == pid && !application.terminated) return true;
    }
    return false;
  }
};

TEST_F(Applications, AreListedWithoutARunningLoop) {
  const double deadline = loop_.now() + 20;
  auto window = std::make_unique<WindowProcess>();
  const std::int32_t pid = window->pid();
  while (!lists(pid) && loop_.now() < deadline) loop_.sleep(0.05);
  EXPECT_TRUE(lists(pid));
  window = nullptr;
  while (lists(pid) && loop_.now() < deadline) loop_.sleep(0.05);
  EXPECT_FALSE(lists(pid));
}

TEST_F(Applications, AreReportedEvenOutsideTheDock) {
  const auto launched = std::make_shared<std::vector<std::int32_t>>();  // the observer stays to the end of the process
  applications_.observeLaunches(
      [launched](const HLRunningApplication& application) { launched->push_back(application.pid); });
  const WindowProcess window;
  const auto told = [&] { return std::find(launched->begin(), launched->end(), window.pid()) != launched->end(); };
  const double deadline = loop_.now() + 20;
  while (!told() && loop_.now() < deadline) loop_.runFor(0.05);
  EXPECT_TRUE(told());
}

TEST(Observer, IsMissingForUnknownProcess) {
  HLMacHost host;
  const auto observer =
      host.platform().accessibility->createObserver(-1, [](const HLElementRef&, std::string_view) { FAIL(); });
  EXPECT_EQ(observer, nullptr);
}

}  // namespace
