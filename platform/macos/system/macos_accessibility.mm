#include "platform/macos/system/macos_accessibility.h"

#import <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>

#include <map>
#include <utility>

#include "platform/macos/values/cf_ref.h"
#include "platform/macos/values/element.h"
#include "platform/macos/values/values.h"

namespace {

class Observer final : public HLObserver {
 public:
  Observer(HLCFRef<AXObserverRef> observer, HLObserverCallback callback)
      : observer_(std::move(observer)), callback_(std::move(callback)) {
    living()[number_] = this;
  }
  ~Observer() override {
    detach();
    living().erase(number_);
  }

  HLAXError addNotification(const HLElementRef& element, std::string_view notification) override {
    const AXUIElementRef watched = HLSystemElement(*element);
    if (watched == nullptr) return HLAXErrorInvalidElement;
    return AXObserverAddNotification(observer_.get(), watched, HLMakeCFString(notification).get(), context());
  }

  HLAXError removeNotification(const HLElementRef& element, std::string_view notification) override {
    const AXUIElementRef watched = HLSystemElement(*element);
    if (watched == nullptr) return HLAXErrorInvalidElement;
    return AXObserverRemoveNotification(observer_.get(), watched, HLMakeCFString(notification).get());
  }

  void attach() override {
    attached_ = true;
    CFRunLoopAddSource(CFRunLoopGetMain(), source(), kCFRunLoopDefaultMode);
  }
  void detach() override {
    attached_ = false;
    CFRunLoopRemoveSource(CFRunLoopGetMain(), source(), kCFRunLoopDefaultMode);
  }

  // The system's callback; on the thread whose loop has the source, which is the main one.
  static void notified(AXObserverRef, AXUIElementRef element, CFStringRef notification, void* context) {
    const auto found = living().find(reinterpret_cast<std::uintptr_t>(context));
    if (found == living().end() || !found->second->attached_) return;
    const HLObserverCallback callback = found->second->callback_;  // it may end the observer
    @autoreleasepool {
      callback(HLMakeElement(element), HLTextOfCFString(notification));
    }
  }

 private:
  // One firing of the source may bring several notifications, and the first may end the observer: so the context is a
  // number and not an address.
  static std::map<std::uintptr_t, Observer*>& living() {
    static std::map<std::uintptr_t, Observer*> observers;
    return observers;
  }
  static std::uintptr_t nextNumber() {
    static std::uintptr_t last = 0;
    return ++last;
  }

  [[nodiscard]] void* context() const { return reinterpret_cast<void*>(number_); }
  [[nodiscard]] CFRunLoopSourceRef source() const { return AXObserverGetRunLoopSource(observer_.get()); }

  const std::uintptr_t number_ = nextNumber();
  const HLCFRef<AXObserverRef> observer_;
  const HLObserverCallback callback_;
  bool attached_ = false;
};

}  // namespace

bool HLMacAccessibility::isProcessTrusted(bool prompt) {
  @autoreleasepool {
    NSDictionary* options = @{(__bridge NSString*)kAXTrustedCheckOptionPrompt : [NSNumber numberWithBool:prompt]};
    return AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options) != 0;
  }
}

HLElementRef HLMacAccessibility::createApplication(std::int32_t pid) {
  const HLCFRef<AXUIElementRef> application(AXUIElementCreateApplication(pid));
  return application ? HLMakeElement(application.get()) : nullptr;
}

std::unique_ptr<HLObserver> HLMacAccessibility::createObserver(std::int32_t pid, HLObserverCallback callback) {
  AXObserverRef made = nullptr;
  const AXError error = AXObserverCreate(pid, Observer::notified, &made);
  HLCFRef<AXObserverRef> observer(made);
  if (error != kAXErrorSuccess || !observer) return nullptr;
  return std::make_unique<Observer>(std::move(observer), std::move(callback));
}
