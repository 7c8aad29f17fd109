// This process, its bundle, and the applications beside it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "platform/macos/system/macos_process_info.h"
#include "platform/macos/system/macos_running_applications.h"

namespace {

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

TEST(Signals, GoToNoGroupOfProcesses) {
  HLMacRunningApplications applications;
  EXPECT_EQ(applications.sendSignal(0, SIGTERM), HLSignalOutcome::refused);
  EXPECT_EQ(applications.sendSignal(-1, SIGTERM), HLSignalOutcome::refused);
  EXPECT_EQ(applications.sendSignal(getpid(), 0), HLSignalOutcome::sent);
}

}  // namespace
