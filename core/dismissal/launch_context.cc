#include "core/dismissal/launch_context.h"

#include <optional>

#include "base/format.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/running_applications.h"

std::string HLLaunchContextSummary() {
  const HLPlatform& platform = HLCurrentPlatform();
  const std::int32_t parentPid = platform.process->parentProcessIdentifier();
  const std::optional<HLRunningApplication> found = platform.runningApplications->find(parentPid);
  const HLRunningApplication parent = found.value_or(HLRunningApplication{});
  return HLFormat("pid=%d ppid=%d parentBundle=%@ parentName=%@", platform.process->processIdentifier(), parentPid,
                  parent.bundleIdentifier.value_or("none"), parent.name.value_or("none"));
}
