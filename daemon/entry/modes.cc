#include "daemon/entry/modes.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <locale>
#include <ostream>
#include <sstream>

#include "core/dismiss_run.h"
#include "core/result.h"
#include "daemon/self_check.h"

namespace {

constexpr double kDefaultSeconds = 10.0;

int dismissNow(const HLModeCall& call) {
  call.out << HLResultWireString(HLDismissNotificationsNow()) << '\n';
  return EXIT_SUCCESS;
}

int selfCheck(const HLModeCall& call) { return HLSelfCheck(call.out); }

constexpr std::array<HLMode, 12> kModes = {{
    {"--request-accessibility", HLModeValue::none, nullptr},
    {"--daemon", HLModeValue::none, nullptr},
    {"--daemon-dismiss", HLModeValue::none, nullptr},
    {"--daemon-self-check", HLModeValue::none, nullptr},
    {"--auto-close-match", HLModeValue::required, nullptr},
    {"--close-matching", HLModeValue::required, nullptr},
    {"--auto-close-probe", HLModeValue::seconds, nullptr},
    {"--observe-nc", HLModeValue::seconds, nullptr},
    {"--self-check", HLModeValue::none, selfCheck},
    {"--send-test-notifications", HLModeValue::none, nullptr},
    {"--dismiss-now", HLModeValue::none, dismissNow},
    {"", HLModeValue::none, nullptr},
}};

// The number that the text begins with: blanks, a sign, digits, a dot, an exponent, as in the C locale; 0 for none.
double leadingNumber(const std::string& text) {
  const auto isDigit = [&text](std::size_t i) { return i < text.size() && text[i] >= '0' && text[i] <= '9'; };
  const auto skipDigits = [&isDigit](std::size_t i) {
    while (isDigit(i)) ++i;
    return i;
  };
  const std::size_t begin = text.find_first_not_of(" \t\n\v\f\r");
  if (begin == std::string::npos) return 0;
  std::size_t end = begin;
  if (text[end] == '-' || text[end] == '+') ++end;
  end = skipDigits(end);
  if (end < text.size() && text[end] == '.') end = skipDigits(end + 1);
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    const bool sign = end + 1 < text.size() && (text[end + 1] == '-' || text[end + 1] == '+');
    const std::size_t exponent = end + (sign ? 2 : 1);
    if (isDigit(exponent)) end = skipDigits(exponent);
  }
  std::istringstream stream(text.substr(begin, end - begin));
  stream.imbue(std::locale::classic());
  double number = 0;
  stream >> number;  // beyond the range of numbers it is the largest one
  return number;
}

double secondsOf(const std::string& text) {
  const double seconds = leadingNumber(text);
  return seconds > 0.0 ? seconds : kDefaultSeconds;
}

}  // namespace

std::span<const HLMode> HLModes() { return kModes; }

HLSelectedMode HLSelectMode(const std::vector<std::string>& arguments) {
  for (const HLMode& mode : kModes) {
    if (mode.switchName.empty()) break;
    const auto found = std::find(arguments.begin(), arguments.end(), mode.switchName);
    if (found == arguments.end()) continue;
    const bool isLast = found + 1 == arguments.end();
    switch (mode.value) {
      case HLModeValue::none:
        return {mode, "", 0};
      case HLModeValue::required:
        if (isLast) continue;
        return {mode, found[1], 0};
      case HLModeValue::seconds:
        return {mode, "", isLast ? kDefaultSeconds : secondsOf(found[1])};
    }
  }
  return {kModes.back(), "", 0};
}

int HLRunMode(const HLSelectedMode& selected, std::ostream& out, std::ostream& err) {
  if (selected.mode.run == nullptr) {
    const std::string_view name = selected.mode.switchName;
    err << "hushlet: this build does not have " << (name.empty() ? "the menu-bar application" : name) << '\n';
    return EXIT_FAILURE;
  }
  const int code = selected.mode.run({selected.value, selected.seconds, out, err});
  out.flush();
  return code;
}
