// The forms of all log records.
#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "tests/swarm/check/checks.h"

namespace {

using namespace std::string_view_literals;

// * stands for any text, # for a number.
constexpr std::array kStatusForms = {
    "applicationDidFinishLaunching bundle=* executable=* trusted=* daemonReachable=* flavor=* pid=# ppid=# parentBundle=* parentName=*"sv,
    "handleClick type=# modifiers=#"sv,
    "refreshStatusItem available=true visible=true"sv,
    "refreshStatusItem available=false visible=true"sv,
    "dismissNotifications"sv,
    "dismissNotifications started"sv,
    "dismissNotifications skipped reason=inFlight"sv,
    "dismissNotifications outcome status=* dismissed=# remaining=# elapsedMs=#"sv,
    "accessibility unavailable from running app; showing setup"sv,
    "hotKey none"sv,
    "hotKey register label=* status=#"sv,
    "hotKeyPressed"sv,
    "autoClose want=on"sv,
    "autoClose want=off"sv,
    "auto-close start failed nc=present"sv,
    "auto-close start failed nc=missing"sv,
    "auto-close watching pid=# register=#"sv,
    "auto-close app=* error=# closed=#"sv,
    "openAtLogin want=* ok=* status=# error=*"sv,
    "openAccessibilitySettings opened=*"sv,
    "requestAccessibility trusted=* pid=# ppid=# parentBundle=* parentName=*"sv,
    "update check status=# kind=# feedBuild=# build=#"sv,
    "snapshot window=* size=#x# wrote=#"sv};

constexpr std::array kDiagnosticForms = {
    "scan root=window-# visited=# candidates=#"sv,
    "alerts per app *=#"sv,
    "attempt iteration=# targetCount=# eligible=# top=#* score=# action=* reason=* frame=* snapshot=*"sv,
    "aborting because all remaining targets were previously ineffective remaining=#"sv,
    "batch actions eligible=# attempted=# clear=# close=# failed=# resolutionMs=# actionWallMs=# actionSumMs=#"sv,
    "batch had no successful actions remaining=#"sv,
    "batch made no observable progress attempted=# remaining=#"sv,
    "batch preparation allocation failed prepared=#"sv,
    "batch progress before=# after=# removed=#"sv,
    "dismiss preflight trusted=* pid=# ppid=# parentBundle=* parentName=*"sv,
    "dismiss using in-process trusted path pid=# ppid=# parentBundle=* parentName=*"sv,
    "dismiss using trusted daemon status=* dismissed=# remaining=# pid=# ppid=# parentBundle=* parentName=*"sv,
    "dismiss failed because neither process nor daemon is trusted pid=# ppid=# parentBundle=* parentName=*"sv,
    "notification center pid=# bundle=*"sv,
    "overflow drain restart failed drain=#"sv,
    "overflow drain=# newPid=# presented=#"sv,
    "requestAccessibility trusted=* prompt=* pid=# ppid=# parentBundle=* parentName=*"sv,
    "socket client command=* response=*"sv,
    "trusted daemon starting trusted=* pid=# ppid=# parentBundle=* parentName=*"sv};

// The length of the number at the beginning; 0 without one.
std::size_t numberLength(std::string_view text) {
  const std::size_t sign = text.starts_with('-') ? 1 : 0;
  std::size_t length = sign;
  while (length < text.size() && text[length] >= '0' && text[length] <= '9') ++length;
  return length > sign ? length : 0;
}

bool fits(std::string_view text, std::string_view form) {
  while (!form.empty()) {
    if (form.front() == '*') {
      form.remove_prefix(1);
      if (form.empty()) return true;
      const std::string_view literal = form.substr(0, form.find_first_of("*#"));
      for (std::size_t at = text.find(literal); at != std::string_view::npos; at = text.find(literal, at + 1)) {
        if (fits(text.substr(at), form)) return true;
      }
      return false;
    }
    const std::size_t length = form.front() == '#' ? numberLength(text) : 0;
    if (form.front() == '#' && length == 0 && !text.starts_with('#')) return false;
    if (form.front() != '#' && (text.empty() || text.front() != form.front())) return false;
    text.remove_prefix(std::max<std::size_t>(length, 1));
    form.remove_prefix(1);
  }
  return text.empty();
}

}  // namespace

bool HasLogForm(const std::string& message, bool isStatusLog) {
  const auto isOne = [&message](std::string_view form) { return fits(message, form); };
  return isStatusLog ? std::any_of(kStatusForms.begin(), kStatusForms.end(), isOne)
                     : std::any_of(kDiagnosticForms.begin(), kDiagnosticForms.end(), isOne);
}
