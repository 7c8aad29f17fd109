// A real desktop keeps every host's promises.
#include "platform/linux/linux_host.h"
#include "tests/platform/linux/desktop/servers.h"
#include "tests/platform/linux/support/desktop_session.h"
#include "tests/support/platform_contract.h"

namespace {

class RealContractDesktop : public ContractDesktop {
 public:
  explicit RealContractDesktop(const Server& server)
      : environment_(session_.environment()),
        server_(session_.startServer(server.command)),
        sender_(session_.environment()) {
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    host_ = std::make_unique<HLLinuxHost>(1, arguments);
    for (const char* title : {"One", "Two", "Three"}) (void)sender_.send("Chat", title, "Hello");
    if (!Eventually([this] { return shown() == 3; })) throw std::runtime_error("no banners");
  }

  const HLPlatform& platform() override { return host_->platform(); }
  std::int32_t pid() override { return server_->pid(); }
  std::string removingAction() override { return "Name:Close"; }

 private:
  int shown() {
    const HLElementRef root = platform().accessibility->createApplication(pid());
    if (root == nullptr) return 0;
    int count = 0;
    const HLAttribute windows = root->copyAttributeValue("AXWindows");
    for (const HLValue& window : *windows.value.as<HLArray>()) {
      const HLAttribute children = (*window.as<HLElementRef>())->copyAttributeValue("AXChildren");
      for (const HLValue& child : *children.value.as<HLArray>()) {
        count += (*child.as<HLElementRef>())->copyActionNames().names.empty() ? 0 : 1;
      }
    }
    return count;
  }

  DesktopSession session_;
  SessionEnvironment environment_;
  std::unique_ptr<ChildProcess> server_;
  NotificationSender sender_;
  std::unique_ptr<HLLinuxHost> host_;
};

INSTANTIATE_TEST_SUITE_P(
    Linux, PlatformContract,
    testing::Values(PlatformContract::Case{"Mate", [] { return std::make_unique<RealContractDesktop>(kMate); }},
                    PlatformContract::Case{"Lxqt", [] { return std::make_unique<RealContractDesktop>(kLxqt); }}),
    ContractCaseName);

// Without a session: its run loop, queues and process need none.
class BareContractHost : public ContractHost {
 public:
  const HLPlatform& platform() override { return host_.platform(); }

 private:
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  HLLinuxHost host_{1, arguments_};
};

INSTANTIATE_TEST_SUITE_P(Linux, HostContract,
                         testing::Values(HostContract::Case{"Linux", std::make_unique<BareContractHost>}),
                         ContractCaseName);

}  // namespace
