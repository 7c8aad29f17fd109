// The host of a program that runs on macOS.
#include <memory>
#include <variant>

#include "platform/macos/macos_host.h"

std::variant<std::unique_ptr<HLHost>, HLHostFailure> HLMakeHost(int, char**) { return std::make_unique<HLMacHost>(); }
