#include "platform/macos/macos_host_report.h"

#import <AppKit/AppKit.h>

#include <sys/sysctl.h>

#include <array>

#include "platform/macos/values/values.h"

namespace {

std::string systemText(const char* name) {
  std::array<char, 128> text{};
  std::size_t size = text.size() - 1;
  return sysctlbyname(name, text.data(), &size, nullptr, 0) == 0 ? text.data() : "";
}

std::string textAt(const HLDictionary& dictionary, std::string_view key) {
  const HLValue* value = HLDictionaryValue(dictionary, key);
  const auto* text = value == nullptr ? nullptr : value->as<std::string>();
  return text == nullptr ? "" : *text;
}

std::string shortenedPath(NSURL* url) {
  return HLOptionalText(url.path.stringByAbbreviatingWithTildeInPath).value_or("");
}

std::string withBuild(const std::string& version, const std::string& build) {
  return build.empty() ? version : version + " (" + build + ")";
}

}  // namespace

std::string HLMacHostReport::systemVersion() {
  return withBuild("macOS " + systemText("kern.osproductversion"), systemText("kern.osversion"));
}

std::string HLMacHostReport::programBundle() {
  @autoreleasepool {
    return shortenedPath(NSBundle.mainBundle.bundleURL);
  }
}

HLServerVersion HLMacHostReport::serverVersion(std::int32_t pid) {
  @autoreleasepool {
    NSURL* url = [NSRunningApplication runningApplicationWithProcessIdentifier:pid].bundleURL;
    if (url == nil) return {};
    const HLDictionary information = HLDictionaryOfObject([NSBundle bundleWithURL:url].infoDictionary);
    return {textAt(information, "CFBundleName"), "",
            withBuild(textAt(information, "CFBundleShortVersionString"), textAt(information, "CFBundleVersion")),
            shortenedPath(url)};
  }
}
