// This process, its bundle, and the applications beside it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "platform/macos/macos_host_report.h"
#include "platform/macos/system/macos_process_info.h"
#include "platform/macos/system/macos_running_applications.h"

namespace {

using testing::MatchesRegex;

TEST(Process, KnowsItsExecutable) {
  HLMacProcessInfo process;
  ASSERT_TRUE(process.executablePath().has_value());
  EXPECT_EQ(process.executablePath()->front(), '/');
  EXPECT_EQ(process.arguments().front(), process.executablePath());
  EXPECT_EQ(process.processIdentifier(), getpid());
  EXPECT_EQ(process.parentProcessIdentifier(), getppid());
}

TEST(Process, OutsideABundleHasNoIdentifier) {
  HLMacProcessInfo process;
  EXPECT_FALSE(process.bundleIdentifier().has_value());
  EXPECT_EQ(HLDictionaryValue(process.informationDictionary(), "HLProductFlavor"), nullptr);
}

TEST(Process, KeepsItsStateInApplicationSupport) {
  HLMacProcessInfo process;
  EXPECT_EQ(process.applicationSupportDirectory(), process.homeDirectory() + "/Library/Application Support");
}

TEST(RunningApplications, HoldNotificationCenter) {
  HLMacRunningApplications applications;
  const auto list = applications.list();
  const auto found = std::find_if(list.begin(), list.end(), [](const HLRunningApplication& application) {
    return application.bundleIdentifier == "com.apple.notificationcenterui";
  });
  ASSERT_NE(found, list.end());
  EXPECT_FALSE(found->terminated);
}

TEST(HostReport, NamesSystemAndNotificationCenter) {
  HLMacHostReport report;
  EXPECT_THAT(report.systemVersion(), MatchesRegex("macOS [0-9.]+ \\([0-9A-Za-z]+\\)"));
  for (const HLRunningApplication& application : HLMacRunningApplications().list()) {
    if (application.bundleIdentifier != "com.apple.notificationcenterui") continue;
    const HLServerVersion center = report.serverVersion(application.pid);
    EXPECT_NE(center.name, "");
    EXPECT_NE(center.version, "");
    EXPECT_THAT(center.bundle, MatchesRegex("/System/.*\\.app"));
  }
  EXPECT_EQ(report.serverVersion(-1).name, "");
  const std::string home = HLMacProcessInfo().homeDirectory() + "/";
  const std::string bundle = HLMacProcessInfo().bundlePath().value_or("");
  EXPECT_EQ(report.programBundle(), bundle.starts_with(home) ? "~/" + bundle.substr(home.size()) : bundle);
}

TEST(Signals, GoToNoGroupOfProcesses) {
  HLMacRunningApplications applications;
  EXPECT_EQ(applications.sendSignal(0, SIGTERM), HLSignalOutcome::refused);
  EXPECT_EQ(applications.sendSignal(-1, SIGTERM), HLSignalOutcome::refused);
  EXPECT_EQ(applications.sendSignal(getpid(), 0), HLSignalOutcome::sent);
}

}  // namespace
