// The simulator keeps every host's promises, on both of its clocks.
#include "tests/platform/sim/scene_desktop.h"
#include "tests/support/platform_contract.h"

namespace {

class SimulatedContractDesktop : public ContractDesktop {
 public:
  explicit SimulatedContractDesktop(const std::string& clock)
      : desktop_(Scene(R"({"role": "AXWindow", "title": "Window", "frame": [0, 0, 400, 300], "children": [
          {"id": "alert", "role": "AXGroup", "description": "Mail, Hello", "frame": [10, 10, 300, 80], "value": 1.5,
           "actions": ["AXPress", "Name:Close"], "closes": "alert", "attributes": {"AXFlag": true,
             "AXCloseButton": {"element": {"role": "AXButton"}}, "AXList": [1, "two", [{"ref": "alert"}], {"a": 1}]},
           "children": [{"role": "AXStaticText", "value": "Hello"}, {"role": "AXButton", "freshHandles": true}]},
          "no element", {"role": "AXGroup", "errors": {"AXTitle": -25204}, "title": "x"}],
          "visibleChildren": [{"ref": "alert"}]})",
                       R"(, "clock": ")" + clock + '"')) {}

  const HLPlatform& platform() override { return desktop_.simulator().platform(); }
  std::int32_t pid() override { return 400; }
  std::string removingAction() override { return "Name:Close"; }

 private:
  SimulatedDesktop desktop_;
};

std::unique_ptr<SimulatedContractDesktop> makeVirtual() {
  return std::make_unique<SimulatedContractDesktop>("virtual");
}
std::unique_ptr<SimulatedContractDesktop> makeReal() { return std::make_unique<SimulatedContractDesktop>("real"); }

INSTANTIATE_TEST_SUITE_P(Simulator, PlatformContract,
                         testing::Values(PlatformContract::Case{"Virtual", makeVirtual},
                                         PlatformContract::Case{"Real", makeReal}),
                         ContractCaseName);
INSTANTIATE_TEST_SUITE_P(Simulator, HostContract,
                         testing::Values(HostContract::Case{"Virtual", makeVirtual},
                                         HostContract::Case{"Real", makeReal}),
                         ContractCaseName);

}  // namespace
