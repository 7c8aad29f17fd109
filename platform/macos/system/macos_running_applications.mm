#include "platform/macos/system/macos_running_applications.h"

#import <AppKit/AppKit.h>

#include <signal.h>

#include <utility>

#include "platform/macos/values/values.h"

NS_ASSUME_NONNULL_BEGIN

// Reports the applications that enter the workspace's list, once they have finished launching: before that they may
// not answer accessibility calls.
@interface HLApplicationListObserver : NSObject
- (instancetype)initWithObserver:(std::function<void(NSRunningApplication*)>)observer NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
@end

NS_ASSUME_NONNULL_END

static NSString* const kFinishedLaunching = @"finishedLaunching";

@implementation HLApplicationListObserver {
  std::function<void(NSRunningApplication*)> _observer;
  NSMutableSet<NSRunningApplication*>* _launching;
}

- (instancetype)initWithObserver:(std::function<void(NSRunningApplication*)>)observer {
  self = [super init];
  if (self != nil) {
    _observer = std::move(observer);
    _launching = [[NSMutableSet alloc] init];
  }
  return self;
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
  if ([keyPath isEqualToString:kFinishedLaunching]) {
    [self reportIfLaunched:object];
    return;
  }
  NSNumber* kind = change[NSKeyValueChangeKindKey];
  NSArray<NSRunningApplication*>* removed = change[NSKeyValueChangeOldKey];
  if (kind.unsignedIntegerValue == NSKeyValueChangeRemoval) {
    for (NSRunningApplication* application in removed) [self forget:application];
  }
  if (kind.unsignedIntegerValue != NSKeyValueChangeInsertion) return;
  NSArray<NSRunningApplication*>* inserted = change[NSKeyValueChangeNewKey];
  for (NSRunningApplication* application in inserted) {
    if (application.activationPolicy == NSApplicationActivationPolicyRegular) continue;
    [_launching addObject:application];
    [application addObserver:self forKeyPath:kFinishedLaunching options:NSKeyValueObservingOptionNew context:nullptr];
    [self reportIfLaunched:application];
  }
}

- (void)reportIfLaunched:(NSRunningApplication*)application {
  if (!application.finishedLaunching || ![_launching containsObject:application]) return;
  [self forget:application];
  _observer(application);
}

- (void)forget:(NSRunningApplication*)application {
  if (![_launching containsObject:application]) return;
  [application removeObserver:self forKeyPath:kFinishedLaunching];
  [_launching removeObject:application];
}

@end

namespace {

constexpr int kMaxPasses = 10'000;  // a run loop may never become idle
// A handled timer or wake-up looks idle to CFRunLoopRunInMode, so require several idle passes.
constexpr int kIdlePasses = 3;

// Runs the main run loop until it is idle: NSWorkspace updates its list there. An application's event loop does so by
// itself, and its handlers must not be re-entered.
void pumpRunLoop() {
  if (!NSThread.isMainThread || NSApp != nil) return;
  CFRunLoopMode mode = CFRunLoopCopyCurrentMode(CFRunLoopGetMain());
  const HLCFRef<CFRunLoopMode> running(mode);
  if (running) return;
  int idle = 0;
  for (int pass = 0; pass < kMaxPasses && idle < kIdlePasses; ++pass) {
    const bool handled = CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource;
    idle = handled ? 0 : idle + 1;
  }
}

HLRunningApplication recordOf(NSRunningApplication* application) {
  return {application.processIdentifier, HLOptionalText(application.bundleIdentifier),
          HLOptionalText(application.localizedName), application.terminated != NO};
}

}  // namespace

std::vector<HLRunningApplication> HLMacRunningApplications::list() {
  @autoreleasepool {
    pumpRunLoop();
    std::vector<HLRunningApplication> applications;
    for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
      if (application.processIdentifier > 0) applications.push_back(recordOf(application));
    }
    return applications;
  }
}

std::optional<HLRunningApplication> HLMacRunningApplications::find(std::int32_t pid) {
  @autoreleasepool {
    pumpRunLoop();
    NSRunningApplication* application = [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
    if (application == nil || application.processIdentifier != pid || pid <= 0) return std::nullopt;
    return recordOf(application);
  }
}

void HLMacRunningApplications::observeLaunches(std::function<void(const HLRunningApplication&)> observer) {
  @autoreleasepool {
    NSWorkspace* workspace = NSWorkspace.sharedWorkspace;
    // Both observe until the process ends.
    [workspace.notificationCenter addObserverForName:NSWorkspaceDidLaunchApplicationNotification
                                              object:nil
                                               queue:NSOperationQueue.mainQueue
                                          usingBlock:^(NSNotification* notification) {
                                            NSRunningApplication* application =
                                                notification.userInfo[NSWorkspaceApplicationKey];
                                            if (application != nil) observer(recordOf(application));
                                          }];
    HLApplicationListObserver* background =
        [[HLApplicationListObserver alloc] initWithObserver:[observer](NSRunningApplication* application) {
          const HLRunningApplication record = recordOf(application);
          dispatch_async(dispatch_get_main_queue(), ^{
            observer(record);
          });
        }];
    [workspace addObserver:background
                forKeyPath:@"runningApplications"
                   options:NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld
                   context:nullptr];
    static NSMutableArray<HLApplicationListObserver*>* observers = [[NSMutableArray alloc] init];
    [observers addObject:background];
  }
}

HLSignalOutcome HLMacRunningApplications::sendSignal(std::int32_t pid, int signal) {
  if (pid <= 0) return HLSignalOutcome::refused;  // kill(2) would signal a process group
  (void)kill(pid, signal);
  return HLSignalOutcome::sent;
}
