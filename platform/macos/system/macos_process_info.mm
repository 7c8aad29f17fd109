#include "platform/macos/system/macos_process_info.h"

#import <Foundation/Foundation.h>

#include <unistd.h>

#include <utility>

#include "platform/macos/values/values.h"

std::vector<std::string> HLMacProcessInfo::arguments() {
  @autoreleasepool {
    std::vector<std::string> arguments;
    for (NSString* argument in NSProcessInfo.processInfo.arguments) arguments.push_back(HLTextOfString(argument));
    if (arguments.empty()) arguments.emplace_back();
    // The first one is what the caller called it, which may be no path.
    if (std::optional<std::string> path = executablePath()) arguments.front() = std::move(*path);
    return arguments;
  }
}

std::optional<std::string> HLMacProcessInfo::environment(std::string_view name) {
  @autoreleasepool {
    return HLOptionalText(NSProcessInfo.processInfo.environment[HLMakeString(name)]);
  }
}

std::int32_t HLMacProcessInfo::processIdentifier() { return getpid(); }

std::int32_t HLMacProcessInfo::parentProcessIdentifier() { return getppid(); }

std::string HLMacProcessInfo::homeDirectory() {
  @autoreleasepool {
    return HLTextOfString(NSHomeDirectory());
  }
}

std::optional<std::string> HLMacProcessInfo::applicationSupportDirectory() {
  @autoreleasepool {
    return HLOptionalText(
        NSSearchPathForDirectoriesInDomains(NSApplicationSupportDirectory, NSUserDomainMask, YES).firstObject);
  }
}

std::optional<std::string> HLMacProcessInfo::bundlePath() {
  @autoreleasepool {
    return HLOptionalText(NSBundle.mainBundle.bundlePath);
  }
}

std::optional<std::string> HLMacProcessInfo::executablePath() {
  @autoreleasepool {
    return HLOptionalText(NSBundle.mainBundle.executablePath);
  }
}

std::optional<std::string> HLMacProcessInfo::bundleIdentifier() {
  @autoreleasepool {
    return HLOptionalText(NSBundle.mainBundle.bundleIdentifier);
  }
}

HLDictionary HLMacProcessInfo::informationDictionary() {
  @autoreleasepool {
    return HLDictionaryOfObject(NSBundle.mainBundle.infoDictionary);
  }
}
