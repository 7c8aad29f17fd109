// The host of a program that runs on a Linux desktop.
#include <memory>
#include <variant>

#include "platform/linux/linux_host.h"

std::variant<std::unique_ptr<HLHost>, HLHostFailure> HLMakeHost(int argc, char** argv) {
  return std::make_unique<HLLinuxHost>(argc, argv);
}
