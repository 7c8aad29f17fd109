#include "report/arguments.h"

#include <algorithm>
#include <vector>

#include "base/terminal.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/text.h"

bool HLHasArgument(std::string_view argument) {
  const std::vector<std::string> arguments = HLCurrentPlatform().process->arguments();
  return std::find(arguments.begin(), arguments.end(), argument) != arguments.end();
}

std::string HLUnknownArgument(std::initializer_list<std::string_view> known) {
  const std::vector<std::string> arguments = HLCurrentPlatform().process->arguments();
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    if (std::find(known.begin(), known.end(), arguments[i]) != known.end()) continue;
    return "unknown argument \"" + HLVisibleText(HLEncodableText(arguments[i])) + "\"";
  }
  return "";
}
