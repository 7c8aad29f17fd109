#include "platform/macos/system/macos_running_applications.h"

#import <AppKit/AppKit.h>

#include <signal.h>

#include <utility>

#include "platform/macos/values/values.h"

NS_ASSUME_NONNULL_BEGIN

// Tells of the applications that come into the workspace's list.
@interface HLApplicationListObserver : NSObject
- (instancetype)initWithObserver:(std::function<void(NSRunningApplication*)>)observer NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
@end

NS_ASSUME_NONNULL_END

@implementation HLApplicationListObserver {
  std::function<void(NSRunningApplication*)> _observer;
}

- (instancetype)initWithObserver:(std::function<void(NSRunningApplication*)>)observer {
  self = [super init];
  if (self != nil) _observer = std::move(observer);
  return self;
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
  NSNumber* kind = change[NSKeyValueChangeKindKey];
  if (kind.unsignedIntegerValue != NSKeyValueChangeInsertion) return;
  NSArray<NSRunningApplication*>* inserted = change[NSKeyValueChangeNewKey];
  for (NSRunningApplication* application in inserted) {
    if (application.activationPolicy != NSApplicationActivationPolicyRegular) _observer(application);
  }
}

@end

namespace {

constexpr int kMostTurns = 10'000;  // for a loop that always has something to do
// A turn takes one thing that is due. It says of a timer, and of having been woken, what it says of nothing at all.
constexpr int kIdleTurns = 3;

// Not under an application's event loop, which turns by itself, and in whose handlers nothing else may come between.
void learn() {
  if (!NSThread.isMainThread || NSApp != nil) return;
  CFRunLoopMode mode = CFRunLoopCopyCurrentMode(CFRunLoopGetMain());
  const HLCFRef<CFRunLoopMode> running(mode);
  if (running) return;
  int idle = 0;
  for (int turn = 0; turn < kMostTurns && idle < kIdleTurns; ++turn) {
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
    learn();
    std::vector<HLRunningApplication> applications;
    for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
      if (application.processIdentifier > 0) applications.push_back(recordOf(application));
    }
    return applications;
  }
}

std::optional<HLRunningApplication> HLMacRunningApplications::find(std::int32_t pid) {
  @autoreleasepool {
    learn();
    NSRunningApplication* application = [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
    if (application == nil || application.processIdentifier != pid || pid <= 0) return std::nullopt;
    return recordOf(application);
  }
}

void HLMacRunningApplications::observeLaunches(std::function<void(const HLRunningApplication&)> observer) {
  @autoreleasepool {
    NSWorkspace* workspace = NSWorkspace.sharedWorkspace;
    // Both go on to the end of the process, so that neither is ever taken out.
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
                   options:NSKeyValueObservingOptionNew
                   context:nullptr];
    static NSMutableArray<HLApplicationListObserver*>* observers = [[NSMutableArray alloc] init];
    [observers addObject:background];
  }
}

HLSignalOutcome HLMacRunningApplications::sendSignal(std::int32_t pid, int signal) {
  if (pid <= 0) return HLSignalOutcome::refused;  // kill(2) would send it to a whole group of processes
  (void)kill(pid, signal);
  return HLSignalOutcome::sent;
}
