#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <variant>

#include "base/terminal.h"
#include "entry/modes.h"
#include "platform/file_mode_mask.h"
#include "platform/platform.h"
#include "platform/process_info.h"

namespace {

// Returns 0 if the width is unknown.
int columnsOf(int descriptor) {
  winsize size{};
  return ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace

int main(int argc, char** argv) {
  HLRestrictFileModeMask();
  const auto made = HLMakeHost(argc, argv);
  if (const auto* failure = std::get_if<HLHostFailure>(&made)) {
    std::cerr << failure->message << '\n';
    return failure->exitCode;
  }
  const HLPlatform& platform = std::get<std::unique_ptr<HLHost>>(made)->platform();
  HLInstallPlatform(&platform);
  if (::isatty(STDOUT_FILENO) == 1) HLMarkAsTerminal(std::cout, columnsOf(STDOUT_FILENO));
  if (::isatty(STDERR_FILENO) == 1) HLMarkAsTerminal(std::cerr, columnsOf(STDERR_FILENO));
  const int code = HLRunMode(HLSelectMode(platform.process->arguments()), std::cout, std::cerr);
  HLInstallPlatform(nullptr);
  return code;
}
