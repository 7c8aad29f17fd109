// The simulated process, and the running applications.
#pragma once

#include "platform/host_report.h"
#include "platform/process_info.h"
#include "platform/running_applications.h"
#include "platform/sim/desktop/desktop.h"
#include "platform/sim/desktop/sim_run_loop.h"
#include "platform/sim/desktop/simulation.h"

class HLSimRunningApplications : public HLRunningApplications {
 public:
  HLSimRunningApplications(HLSimDesktop& desktop, HLSimRunLoop& runLoop) : desktop_(desktop), runLoop_(runLoop) {}

  [[nodiscard]] std::vector<HLRunningApplication> list() override;
  [[nodiscard]] std::optional<HLRunningApplication> find(std::int32_t pid) override;
  void observeLaunches(std::function<void(const HLRunningApplication&)> observer) override;
  [[nodiscard]] HLSignalOutcome sendSignal(std::int32_t pid, int signal) override;

 private:
  HLSimDesktop& desktop_;
  HLSimRunLoop& runLoop_;
};

class HLSimProcessInfo : public HLProcessInfo {
 public:
  HLSimProcessInfo(const HLScene& scene, HLSimulatorSetup setup) : scene_(scene), setup_(std::move(setup)) {}

  [[nodiscard]] std::vector<std::string> arguments() override;
  [[nodiscard]] std::optional<std::string> environment(std::string_view name) override;
  [[nodiscard]] std::int32_t processIdentifier() override;
  [[nodiscard]] std::int32_t parentProcessIdentifier() override;
  [[nodiscard]] std::string homeDirectory() override;
  [[nodiscard]] std::optional<std::string> applicationSupportDirectory() override;
  [[nodiscard]] std::optional<std::string> bundlePath() override { return scene_.bundle.path; }
  [[nodiscard]] std::optional<std::string> executablePath() override { return scene_.bundle.executablePath; }
  [[nodiscard]] std::optional<std::string> bundleIdentifier() override { return scene_.bundle.identifier; }
  [[nodiscard]] HLDictionary informationDictionary() override { return scene_.bundle.info; }

 private:
  const HLScene& scene_;
  const HLSimulatorSetup setup_;
};

// Tells what a recording says of the desktop that it was made on.
class HLSimHostReport : public HLHostReport {
 public:
  explicit HLSimHostReport(const HLScene& scene) : scene_(scene) {}

  [[nodiscard]] std::string systemVersion() override;
  [[nodiscard]] HLServerVersion serverVersion(std::int32_t pid) override;
  [[nodiscard]] std::vector<HLRawElement> rawElements(std::int32_t) override { return {}; }

 private:
  const HLScene& scene_;
};
