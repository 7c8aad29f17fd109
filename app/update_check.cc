#include "app/app_delegate.h"
#include "app/update_feed.h"
#include "base/log.h"
#include "platform/application/alerts.h"
#include "platform/application/application.h"
#include "platform/application/http_client.h"
#include "platform/application/workspace.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/text.h"

namespace {

constexpr double kTimeout = 15.0;  // seconds
constexpr std::int64_t kOK = 200;

std::string installedVersion(const HLDictionary& information) {
  const HLValue* value = HLDictionaryValue(information, "CFBundleShortVersionString");
  if (value == nullptr) return "?";
  if (const std::string* text = value->as<std::string>()) return *text;
  return HLNumberText(*value).value_or("?");
}

std::int64_t installedBuild(const HLDictionary& information) {
  const HLValue* value = HLDictionaryValue(information, "CFBundleVersion");
  if (value == nullptr) return 0;
  if (const std::string* text = value->as<std::string>()) return HLLeadingInteger(*text);
  if (const bool* truth = value->as<bool>()) return *truth ? 1 : 0;
  return HLIntegerPart(*value).value_or(0);
}

void showVerdict(const HLApplicationPlatform& host, const HLHTTPAnswer& answer, const HLDictionary& information) {
  const std::int64_t build = installedBuild(information);
  const QLMUpdateVerdict verdict =
      QLMReadUpdateFeed(answer.status == kOK ? answer.body : std::nullopt, installedVersion(information), build);
  HLAppendLog("update check status=%ld kind=%ld feedBuild=%ld build=%ld", answer.status,
              static_cast<std::int64_t>(verdict.kind), verdict.build, build);
  host.application->activate();
  const std::size_t chosen = host.alerts->runModal(
      {verdict.title, verdict.message,
       verdict.offersDownload() ? std::vector<std::string>{"Download", "Later"} : std::vector<std::string>{"OK"}});
  if (chosen == 0 && verdict.offersDownload()) (void)host.workspace->openAddress(QLMDownloadURL());
}

}  // namespace

void HLAppDelegate::checkForUpdates() {
  // Read now: the bundle may have been replaced by the time the response arrives.
  const HLDictionary information = HLCurrentPlatform().process->informationDictionary();
  host_.httpClient->get(QLMUpdateFeedURL(), kTimeout, [&host = host_, information](HLHTTPAnswer answer) {
    HLCurrentPlatform().runLoop->postToMainQueue(
        [&host, information, answer = std::move(answer)] { showVerdict(host, answer, information); });
  });
}
