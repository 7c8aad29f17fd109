#include "entry/modes.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <locale>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

#include "app/app_delegate.h"
#include "autoclose/auto_closer.h"
#include "autoclose/close_matching.h"
#include "autoclose/rules.h"
#include "base/paths.h"
#include "base/terminal.h"
#include "core/dismissal/dismiss_run.h"
#include "core/dismissal/result.h"
#include "daemon/accessibility_request.h"
#include "daemon/observe.h"
#include "daemon/routing.h"
#include "daemon/self_check.h"
#include "daemon/test_notifications.h"
#include "daemon/trusted_daemon.h"
#include "entry/switch_texts.h"
#include "platform/platform.h"
#include "report/explain.h"
#include "report/record_scene.h"

namespace {

constexpr double kDefaultSeconds = 10.0;
constexpr const char* kProgram = "hushlet " HL_VERSION;

// Returns an empty text for a status that needs no advice, and where the host has none.
std::string adviceFor(HLDismissStatus status) {
  const std::optional<HLCommandAdvice>& advice = HLCurrentPlatform().commandAdvice;
  if (!advice) return "";
  if (status == HLDismissStatusAccessDenied) return std::string(advice->accessDenied);
  if (status == HLDismissStatusNotificationCenterUnavailable) return std::string(advice->notificationCenterUnavailable);
  const std::string_view unclosable = advice->unclosable ? advice->unclosable() : "";
  if (!unclosable.empty()) return std::string(unclosable);
  if (status == HLDismissStatusFailed) return std::string(advice->failed) + HLDiagnosticsLogPath().value_or("none");
  return "";
}

// Returns 0, whatever the result.
int printResult(const HLDismissResult& result, const HLModeCall& call) {
  call.out << HLResultWireString(result) << std::endl;  // flushed, so that it precedes the advice on a terminal
  const std::string advice = HLIsTerminal(call.err) ? adviceFor(result.status) : "";
  if (!advice.empty()) call.err << advice << '\n';
  return EXIT_SUCCESS;
}

int autoCloseMatch(const HLModeCall& call) {
  const bool match = HLAlertDescriptionMatchesAutoClose(call.value, HLAutoCloseRules(std::nullopt));
  call.out << (match ? "match" : "no") << '\n';
  return EXIT_SUCCESS;
}

int help(const HLModeCall& call);

int version(const HLModeCall& call) {
  call.out << kProgram << '\n';
  return EXIT_SUCCESS;
}

using Call = const HLModeCall&;
using enum HLModeValue;

constexpr std::array<HLMode, 16> kModes = {{
    {"--request-accessibility", none, [](Call) { return HLRequestAccessibility(true) ? EXIT_FAILURE : EXIT_SUCCESS; }},
    {"--daemon", none, [](Call) { return HLRunTrustedDaemon(); }},
    {"--daemon-dismiss", none,
     [](Call call) { return printResult(HLDismissNotificationsPreferTrustedDaemon(), call); }},
    {"--daemon-self-check", none, [](Call call) { return HLLocalDaemonSelfCheck(call.out); }},
    {"--auto-close-match", required, autoCloseMatch},
    {"--close-matching", required, [](Call call) { return HLCloseMatchingAlerts(call.value, call.out); }},
    {"--auto-close-probe", seconds, [](Call call) { return HLRunAutoCloseProbe(call.seconds, call.out); }},
    {"--observe-nc", seconds, [](Call call) { return HLObserveNotificationCenter(call.seconds, call.out, call.err); }},
    {"--self-check", none, [](Call call) { return HLSelfCheck(call.out); }},
    {"--send-test-notifications", none, [](Call) { return HLSendTestNotifications(); }},
    {"--dismiss-now", none, [](Call call) { return printResult(HLDismissNotificationsNow(), call); }},
    {"--help", none, help},
    {"--version", none, version},
    {"--explain", none, [](Call call) { return HLExplainScreen(call.out, call.err); }},
    {"--record-scene", expected, [](Call call) { return HLRecordScene(call.value, kProgram, call.out, call.err); }},
    {"", none, [](Call call) { return HLRunApplication(call.err); }},
}};

void printSwitch(const HLSwitchText& text, std::ostream& out) {
  constexpr std::size_t kColumn = 30;
  std::string line(text.name);
  if (!text.value.empty()) line.append(" ").append(text.value);
  line.resize(std::max(kColumn, line.size() + 1), ' ');
  out << "  " << line << text.summary << '\n';
}

int help(const HLModeCall& call) {
  call.out << "Usage: hushlet [MODE] [OPTION...]\n\n"
              "Clears the notification banners on screen. Without a mode, starts the application,\n"
              "which clears them when its icon is clicked or its shortcut is pressed.\n\nModes:\n";
  for (const HLSwitchText& text : HLModeTexts) printSwitch(text, call.out);
  call.out << "\nOptions of --explain and --record-scene:\n";
  for (const HLSwitchText& text : HLReportTexts) printSwitch(text, call.out);
  call.out << "\nOptions of the application:\n";
  for (const HLSwitchText& text : HLOptionTexts) printSwitch(text, call.out);
  return EXIT_SUCCESS;
}

// Returns the number at the beginning of the text (spaces, sign, digits, dot, exponent; C locale), or 0 without one.
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
  stream >> number;  // out of range, the largest number
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
      case HLModeValue::expected:
        return {mode, isLast ? "" : found[1], 0};
      case HLModeValue::seconds:
        return {mode, "", isLast ? kDefaultSeconds : secondsOf(found[1])};
    }
  }
  return {kModes.back(), "", 0};
}

int HLRunMode(const HLSelectedMode& selected, std::ostream& out, std::ostream& err) {
  const int code = selected.mode.run({selected.value, selected.seconds, out, err});
  out.flush();
  return code;
}
