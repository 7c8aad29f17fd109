// The part of the system's SMAppService that the program calls, for sysroots older than macOS 13 (tools/macos-sysroot).
#pragma once

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSInteger, SMAppServiceStatus) {
  SMAppServiceStatusNotRegistered,
  SMAppServiceStatusEnabled,
  SMAppServiceStatusRequiresApproval,
  SMAppServiceStatusNotFound,
} API_AVAILABLE(macos(13.0));

API_AVAILABLE(macos(13.0))
@interface SMAppService : NSObject
@property(class, readonly) SMAppService *mainAppService;
@property(readonly) SMAppServiceStatus status;
- (BOOL)registerAndReturnError:(NSError *_Nullable *_Nullable)error;
- (BOOL)unregisterAndReturnError:(NSError *_Nullable *_Nullable)error;
@end

NS_ASSUME_NONNULL_END
